#pragma once

#include <cstdint>
#include <type_traits>

#include <hdf5.h>

namespace zarvi {

/// The ten numeric element types that datasets are created, read and written with.
enum class ElementKind
{
    Int8,
    UInt8,
    Int16,
    UInt16,
    Int32,
    UInt32,
    Int64,
    UInt64,
    Float32,
    Float64
};

/// Class of a stored element as the library reports it.
enum class ElementClass
{
    Integer,
    Float,
    String,
    Other
};

/// What elementType() reports about a dataset: class, size in bytes and sign.
struct ElementType
{
    ElementClass elementClass = ElementClass::Other;
    std::size_t size = 0;
    bool isSigned = false;
};

template <typename T>
concept NumericElement =
    std::is_same_v<T, std::int8_t> || std::is_same_v<T, std::uint8_t> || std::is_same_v<T, std::int16_t> ||
    std::is_same_v<T, std::uint16_t> || std::is_same_v<T, std::int32_t> || std::is_same_v<T, std::uint32_t> ||
    std::is_same_v<T, std::int64_t> || std::is_same_v<T, std::uint64_t> || std::is_same_v<T, float> ||
    std::is_same_v<T, double>;

template <NumericElement T>
constexpr ElementKind elementKindOf()
{
    if constexpr (std::is_same_v<T, std::int8_t>) return ElementKind::Int8;
    else if constexpr (std::is_same_v<T, std::uint8_t>) return ElementKind::UInt8;
    else if constexpr (std::is_same_v<T, std::int16_t>) return ElementKind::Int16;
    else if constexpr (std::is_same_v<T, std::uint16_t>) return ElementKind::UInt16;
    else if constexpr (std::is_same_v<T, std::int32_t>) return ElementKind::Int32;
    else if constexpr (std::is_same_v<T, std::uint32_t>) return ElementKind::UInt32;
    else if constexpr (std::is_same_v<T, std::int64_t>) return ElementKind::Int64;
    else if constexpr (std::is_same_v<T, std::uint64_t>) return ElementKind::UInt64;
    else if constexpr (std::is_same_v<T, float>) return ElementKind::Float32;
    else return ElementKind::Float64;
}

/// The library's native memory type for an element kind (owned by the library; never closed).
hid_t nativeTypeOf(ElementKind kind);
/// Size in bytes of one element of that kind.
std::size_t elementSize(ElementKind kind);

} // namespace zarvi
