#pragma once

namespace zarvi {

class OperationViewRegistry;

/// Adds the views of the behaviour operations. GUI start-up only.
void registerBehaviorOperationViews(OperationViewRegistry& registry);

} // namespace zarvi
