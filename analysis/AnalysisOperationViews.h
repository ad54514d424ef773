#pragma once

namespace zarvi {

class OperationViewRegistry;

/// Adds the parameter views of the single-file analyses. Called once at start-up by
/// the desktop application and the GUI tests.
void registerAnalysisOperationViews(OperationViewRegistry& registry);

} // namespace zarvi
