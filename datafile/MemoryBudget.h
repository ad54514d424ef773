#pragma once

#include <QString>

#include <cstdint>
#include <initializer_list>

namespace zarvi {

/// Whether a step's buffers, all together, fit in the memory the system can still give,
/// checked before anything is allocated, so that sizes declared by a file end in a message
/// and never in an allocation failure. Stateless; any thread.
class MemoryBudget
{
public:
    /// Bytes the system can give now without swapping (the kernel's estimate of available
    /// memory, else the free physical pages).
    static std::uint64_t availableBytes();

    /// The product of `factors`, saturated at the largest 64-bit value.
    static std::uint64_t product(std::initializer_list<std::uint64_t> factors);

    /// Empty when `bytes` fit in availableBytes(); otherwise a message naming `what` (bold
    /// in the message) and the sizes.
    static QString problem(const QString& what, std::uint64_t bytes);
};

} // namespace zarvi
