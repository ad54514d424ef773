#pragma once

namespace zarvi::test {

/// Registers the operations (and, in suites with widgets, their views) that the suites
/// of one test folder use; each folder with a Qt test main defines it in Registration.cpp.
void registerOperations();

} // namespace zarvi::test
