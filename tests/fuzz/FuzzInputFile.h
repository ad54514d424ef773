#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>

namespace zarvi::fuzz {

/// Hands the readers an input as a file, for they all read from paths. One temporary
/// folder per process, removed at exit; each call replaces the file of that name.
/// Used by one thread at a time, as libFuzzer runs inputs one after another.
class FuzzInputFile
{
public:
    /// The path of the file `name` in the process's folder, holding exactly the bytes
    /// given; empty when it could not be written.
    static QString write(const QString& name, const std::uint8_t* data, std::size_t size);
};

} // namespace zarvi::fuzz
