#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace zarvi::fuzz {

/// One reader of outside data driven by arbitrary bytes: the fuzz target of that name
/// and the replay of its kept inputs call the same function.
struct FuzzEntry
{
    /// The target's name, which is also its folder under regressions/.
    const char* name;
    void (*run)(const std::uint8_t* data, std::size_t size);
};

/// Every entry: "tiff", "csv", "xlsx", "video" and "datafile". Each writes the input to
/// a file and reads it the way the program reads such a file, so that a reader's fault
/// shows up under the sanitizers; what the reader reports is not checked, but for the
/// refusal message of a data file. "datafile" reads through the HDF5 library in a forked
/// child first, as the application checks a file in a child process (see
/// library-faults/README.md).
std::span<const FuzzEntry> fuzzEntries();

/// The entry of that name, or null.
const FuzzEntry* findFuzzEntry(const char* name);

} // namespace zarvi::fuzz
