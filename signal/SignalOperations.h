#pragma once

namespace zarvi {

class OperationRegistry;

/// Adds the signal operations (processes and parameter declarations) to the registry.
/// Called once at start-up by the programs and the tests that run signal operations.
void registerSignalOperations(OperationRegistry& registry);

} // namespace zarvi
