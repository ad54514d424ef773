#pragma once

namespace zarvi {

class OperationRegistry;

/// Adds the behaviour operations (processes and parameter declarations) to the
/// registry. Called once at start-up by the programs and the tests that run them.
void registerBehaviorOperations(OperationRegistry& registry);

} // namespace zarvi
