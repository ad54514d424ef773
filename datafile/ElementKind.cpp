#include "datafile/ElementKind.h"

namespace zarvi {

hid_t nativeTypeOf(ElementKind kind)
{
    switch (kind) {
    case ElementKind::Int8:
        return H5T_NATIVE_INT8;
    case ElementKind::UInt8:
        return H5T_NATIVE_UINT8;
    case ElementKind::Int16:
        return H5T_NATIVE_INT16;
    case ElementKind::UInt16:
        return H5T_NATIVE_UINT16;
    case ElementKind::Int32:
        return H5T_NATIVE_INT32;
    case ElementKind::UInt32:
        return H5T_NATIVE_UINT32;
    case ElementKind::Int64:
        return H5T_NATIVE_INT64;
    case ElementKind::UInt64:
        return H5T_NATIVE_UINT64;
    case ElementKind::Float32:
        return H5T_NATIVE_FLOAT;
    case ElementKind::Float64:
        return H5T_NATIVE_DOUBLE;
    }
    return H5I_INVALID_HID;
}

std::size_t elementSize(ElementKind kind)
{
    switch (kind) {
    case ElementKind::Int8:
    case ElementKind::UInt8:
        return 1;
    case ElementKind::Int16:
    case ElementKind::UInt16:
        return 2;
    case ElementKind::Int32:
    case ElementKind::UInt32:
    case ElementKind::Float32:
        return 4;
    case ElementKind::Int64:
    case ElementKind::UInt64:
    case ElementKind::Float64:
        return 8;
    }
    return 0;
}

} // namespace zarvi
