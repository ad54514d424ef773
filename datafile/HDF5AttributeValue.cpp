#include "datafile/HDF5AttributeValue.h"

#include "datafile/HDF5Handle.h"

#include <QStringList>

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

namespace zarvi {

namespace {

/// Reads every point as T: one point gives a single value, more give a list in storage order.
template <typename T> QVariant readNumbers(hid_t attribute, hid_t memoryType, hssize_t points)
{
    std::vector<T> values(static_cast<std::size_t>(points));
    if (points > 0 && H5Aread(attribute, memoryType, values.data()) < 0)
        return {};
    const auto toVariant = [](T v) -> QVariant {
        if constexpr (std::is_floating_point_v<T>)
            return static_cast<double>(v);
        else if constexpr (sizeof(T) < 4 || (sizeof(T) == 4 && std::is_signed_v<T>))
            return static_cast<int>(v);
        else
            return static_cast<qlonglong>(v);
    };
    if (points == 1)
        return toVariant(values.front());
    QVariantList list;
    list.reserve(static_cast<qsizetype>(values.size()));
    for (const T v : values)
        list.append(toVariant(v));
    return list;
}

QVariant readIntegers(hid_t attribute, std::size_t size, bool isSigned, hssize_t points)
{
    switch (size) {
    case 1:
        return isSigned ? readNumbers<std::int8_t>(attribute, H5T_NATIVE_INT8, points)
                        : readNumbers<std::uint8_t>(attribute, H5T_NATIVE_UINT8, points);
    case 2:
        return isSigned ? readNumbers<std::int16_t>(attribute, H5T_NATIVE_INT16, points)
                        : readNumbers<std::uint16_t>(attribute, H5T_NATIVE_UINT16, points);
    case 4:
        return isSigned ? readNumbers<std::int32_t>(attribute, H5T_NATIVE_INT32, points)
                        : readNumbers<std::uint32_t>(attribute, H5T_NATIVE_UINT32, points);
    case 8:
        return isSigned ? readNumbers<std::int64_t>(attribute, H5T_NATIVE_INT64, points)
                        : readNumbers<std::uint64_t>(attribute, H5T_NATIVE_UINT64, points);
    default:
        return {};
    }
}

QVariant readStrings(hid_t attribute, hid_t storedType, hssize_t points)
{
    QStringList texts;
    if (H5Tis_variable_str(storedType) > 0) {
        const HDF5Handle memoryType(H5Tcopy(H5T_C_S1), H5Tclose);
        if (H5Tset_size(memoryType.get(), H5T_VARIABLE) < 0 ||
            H5Tset_cset(memoryType.get(), H5Tget_cset(storedType)) < 0)
            return {};
        std::vector<char*> pointers(static_cast<std::size_t>(points), nullptr);
        const bool ok = points == 0 || H5Aread(attribute, memoryType.get(), pointers.data()) >= 0;
        // The library allocated each text; it must also be the one to free it.
        for (char* p : pointers) {
            if (ok)
                texts.append(QString::fromUtf8(p ? p : ""));
            if (p)
                H5free_memory(p);
        }
        if (!ok)
            return {};
    } else {
        const std::size_t size = H5Tget_size(storedType);
        if (size == 0)
            return {};
        std::vector<char> buffer(static_cast<std::size_t>(points) * size);
        if (points > 0 && H5Aread(attribute, storedType, buffer.data()) < 0)
            return {};
        const bool spacePadded = H5Tget_strpad(storedType) == H5T_STR_SPACEPAD;
        for (hssize_t i = 0; i < points; ++i) {
            const char* text = buffer.data() + static_cast<std::size_t>(i) * size;
            std::size_t length = strnlen(text, size);
            while (spacePadded && length > 0 && text[length - 1] == ' ')
                --length;
            texts.append(QString::fromUtf8(text, static_cast<qsizetype>(length)));
        }
    }
    if (points == 1)
        return texts.front();
    return texts;
}

bool isIntegral(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return true;
    default:
        return false;
    }
}

bool isFloating(const QVariant& value)
{
    return value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float;
}

} // namespace

QVariant HDF5AttributeValue::read(hid_t attribute)
{
    const HDF5Handle type(H5Aget_type(attribute), H5Tclose);
    const HDF5Handle space(H5Aget_space(attribute), H5Sclose);
    const hssize_t points = H5Sget_simple_extent_npoints(space.get());
    if (!type.valid() || points < 0)
        return {};
    switch (H5Tget_class(type.get())) {
    case H5T_INTEGER: {
        const HDF5Handle native(H5Tget_native_type(type.get(), H5T_DIR_ASCEND), H5Tclose);
        return readIntegers(attribute, H5Tget_size(native.get()), H5Tget_sign(native.get()) == H5T_SGN_2,
                            points);
    }
    case H5T_FLOAT: {
        const HDF5Handle native(H5Tget_native_type(type.get(), H5T_DIR_ASCEND), H5Tclose);
        const std::size_t size = H5Tget_size(native.get());
        if (size == sizeof(float))
            return readNumbers<float>(attribute, H5T_NATIVE_FLOAT, points);
        if (size == sizeof(double))
            return readNumbers<double>(attribute, H5T_NATIVE_DOUBLE, points);
        return {};
    }
    case H5T_STRING:
        return readStrings(attribute, type.get(), points);
    default:
        return {};
    }
}

HDF5AttributeValue HDF5AttributeValue::integers(std::vector<std::int64_t> values, bool scalar)
{
    HDF5AttributeValue result;
    const bool fit = std::all_of(values.begin(), values.end(), [](std::int64_t v) {
        return v >= std::numeric_limits<std::int32_t>::min() && v <= std::numeric_limits<std::int32_t>::max();
    });
    result.m_kind = fit ? Kind::Int32 : Kind::Int64;
    result.m_scalar = scalar;
    result.m_integers = std::move(values);
    return result;
}

HDF5AttributeValue HDF5AttributeValue::doubles(std::vector<double> values, bool scalar)
{
    HDF5AttributeValue result;
    result.m_kind = Kind::Float64;
    result.m_scalar = scalar;
    result.m_doubles = std::move(values);
    return result;
}

HDF5AttributeValue HDF5AttributeValue::texts(const QStringList& values, bool scalar)
{
    HDF5AttributeValue result;
    result.m_kind = Kind::Text;
    result.m_scalar = scalar;
    for (const QString& text : values)
        result.m_texts.push_back(text.toUtf8());
    return result;
}

HDF5AttributeValue HDF5AttributeValue::fromList(const QVariantList& list)
{
    if (std::all_of(list.begin(), list.end(), isIntegral)) {
        std::vector<std::int64_t> values;
        for (const QVariant& v : list)
            values.push_back(v.toLongLong());
        return integers(std::move(values), false);
    }
    if (std::all_of(list.begin(), list.end(),
                    [](const QVariant& v) { return isIntegral(v) || isFloating(v); })) {
        std::vector<double> values;
        for (const QVariant& v : list)
            values.push_back(v.toDouble());
        return doubles(std::move(values), false);
    }
    if (std::all_of(list.begin(), list.end(),
                    [](const QVariant& v) { return v.typeId() == QMetaType::QString; })) {
        QStringList values;
        for (const QVariant& v : list)
            values.append(v.toString());
        return texts(values, false);
    }
    return {};
}

HDF5AttributeValue HDF5AttributeValue::fromVariant(const QVariant& value)
{
    const QMetaType type = value.metaType();
    if (type == QMetaType::fromType<QString>())
        return texts({value.toString()}, true);
    if (type == QMetaType::fromType<QStringList>())
        return texts(value.toStringList(), false);
    if (type == QMetaType::fromType<QVariantList>())
        return fromList(value.toList());
    if (type == QMetaType::fromType<QList<int>>()) {
        const QList<int> list = value.value<QList<int>>();
        return integers(std::vector<std::int64_t>(list.begin(), list.end()), false);
    }
    if (type == QMetaType::fromType<QList<qlonglong>>()) {
        const QList<qlonglong> list = value.value<QList<qlonglong>>();
        HDF5AttributeValue result = integers(std::vector<std::int64_t>(list.begin(), list.end()), false);
        result.m_kind = Kind::Int64;
        return result;
    }
    if (type == QMetaType::fromType<QList<double>>()) {
        const QList<double> list = value.value<QList<double>>();
        return doubles(std::vector<double>(list.begin(), list.end()), false);
    }
    if (isFloating(value))
        return doubles({value.toDouble()}, true);
    if (type == QMetaType::fromType<qlonglong>() || type == QMetaType::fromType<qulonglong>()) {
        HDF5AttributeValue result = integers({value.toLongLong()}, true);
        result.m_kind = Kind::Int64;
        return result;
    }
    if (isIntegral(value))
        return integers({value.toLongLong()}, true);
    return {};
}

bool HDF5AttributeValue::create(hid_t location, const QByteArray& name) const
{
    std::vector<std::int32_t> int32s;
    std::vector<const char*> textPointers;
    HDF5Handle stringType(H5I_INVALID_HID, H5Tclose);
    hid_t fileType = H5I_INVALID_HID;
    hid_t memoryType = H5I_INVALID_HID;
    const void* buffer = nullptr;
    hsize_t length = 0;
    switch (m_kind) {
    case Kind::Int32:
        int32s.assign(m_integers.begin(), m_integers.end());
        fileType = H5T_STD_I32LE;
        memoryType = H5T_NATIVE_INT32;
        buffer = int32s.data();
        length = int32s.size();
        break;
    case Kind::Int64:
        fileType = H5T_STD_I64LE;
        memoryType = H5T_NATIVE_INT64;
        buffer = m_integers.data();
        length = m_integers.size();
        break;
    case Kind::Float64:
        fileType = H5T_IEEE_F64LE;
        memoryType = H5T_NATIVE_DOUBLE;
        buffer = m_doubles.data();
        length = m_doubles.size();
        break;
    case Kind::Text:
        for (const QByteArray& text : m_texts)
            textPointers.push_back(text.constData());
        stringType = HDF5Handle(H5Tcopy(H5T_C_S1), H5Tclose);
        H5Tset_size(stringType.get(), H5T_VARIABLE);
        H5Tset_cset(stringType.get(), H5T_CSET_UTF8);
        H5Tset_strpad(stringType.get(), H5T_STR_NULLTERM);
        fileType = memoryType = stringType.get();
        buffer = textPointers.data();
        length = textPointers.size();
        break;
    case Kind::None:
        return false;
    }
    const HDF5Handle space(m_scalar ? H5Screate(H5S_SCALAR) : H5Screate_simple(1, &length, nullptr),
                           H5Sclose);
    const HDF5Handle properties(H5Pcreate(H5P_ATTRIBUTE_CREATE), H5Pclose);
    H5Pset_char_encoding(properties.get(), H5T_CSET_UTF8);
    const HDF5Handle attribute(
        H5Acreate2(location, name.constData(), fileType, space.get(), properties.get(), H5P_DEFAULT),
        H5Aclose);
    // An empty list is a valid attribute of 0 elements; there is nothing to write into it.
    return attribute.valid() && (length == 0 || H5Awrite(attribute.get(), memoryType, buffer) >= 0);
}

} // namespace zarvi
