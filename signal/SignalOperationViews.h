#pragma once

namespace zarvi {

class OperationViewRegistry;

/// Adds the parameter views of the signal operations. Called once at start-up by the
/// desktop application and the GUI tests.
void registerSignalOperationViews(OperationViewRegistry& registry);

} // namespace zarvi
