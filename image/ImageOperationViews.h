#pragma once

namespace zarvi {

class OperationViewRegistry;

/// Adds the views of the image-stack operations. GUI start-up only.
void registerImageOperationViews(OperationViewRegistry& registry);

} // namespace zarvi
