#pragma once

#include <QByteArray>
#include <QVariant>

#include <cstdint>
#include <vector>

#include <hdf5.h>

namespace zarvi {

/// An attribute value in the form the library stores it: one kind of element,
/// as a scalar or a 1-D list. Turns variants into that form and back; used only
/// by the data-file layer, on the thread of the reader or writer that calls it.
///
/// Written: a string as a scalar variable-length UTF-8 string; bool and integers
/// that fit as 32-bit signed, larger ones and qlonglong/qulonglong as 64-bit;
/// float and double as 64-bit floats; QStringList, QVariantList (all integers,
/// all numbers or all strings), QList<int>, QList<qlonglong> and QList<double> as
/// 1-D lists. An empty list is a list of 0 32-bit integers (0 strings for an
/// empty QStringList).
///
/// Read: one stored element gives a single value, more or none give a list
/// (QStringList for strings, QVariantList for numbers). Integers up to 32 bits
/// become int, except unsigned 32-bit which, like all 64-bit integers, becomes
/// qlonglong (an unsigned 64-bit value above the signed range wraps); floats
/// become double.
class HDF5AttributeValue
{
public:
    /// The value of an open attribute; an invalid variant for types not listed above.
    static QVariant read(hid_t attribute);
    /// The stored form of a variant; not valid() when the variant cannot be stored.
    static HDF5AttributeValue fromVariant(const QVariant& value);

    bool isValid() const { return m_kind != Kind::None; }
    /// Creates the attribute name (UTF-8) on location and writes the value into it.
    /// The attribute must not exist yet.
    bool create(hid_t location, const QByteArray& name) const;

private:
    enum class Kind
    {
        None,
        Int32,
        Int64,
        Float64,
        Text
    };

    static HDF5AttributeValue integers(std::vector<std::int64_t> values, bool scalar);
    static HDF5AttributeValue doubles(std::vector<double> values, bool scalar);
    static HDF5AttributeValue texts(const QStringList& values, bool scalar);
    static HDF5AttributeValue fromList(const QVariantList& list);

    Kind m_kind = Kind::None;
    bool m_scalar = true;
    std::vector<std::int64_t> m_integers;
    std::vector<double> m_doubles;
    std::vector<QByteArray> m_texts;
};

} // namespace zarvi
