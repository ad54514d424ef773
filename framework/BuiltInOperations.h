#pragma once

namespace zarvi {

class OperationRegistry;

/// Declares every operation the program ships with. One list, so that adding an
/// operation is one entry here plus its process.
void registerBuiltInOperations(OperationRegistry& registry);

} // namespace zarvi
