#pragma once

namespace zarvi {

class OperationRegistry;

/// Adds the single-file analyses (processes and parameter declarations) to the
/// registry. Called once at start-up by the programs and the tests that run them.
void registerAnalysisOperations(OperationRegistry& registry);

} // namespace zarvi
