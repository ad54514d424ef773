#include "datafile/HDF5Writer_V6.h"

#include "datafile/HDF5AttributeValue.h"
#include "datafile/HDF5Handle.h"

namespace zarvi {

// The attribute writers of HDF5Writer_V6, kept apart from its groups and datasets.

bool HDF5Writer_V6::canWriteAttribute(hid_t location, const QString& name)
{
    if (!isValidLocation(location))
        return false;
    if (name.isEmpty()) {
        setError(QStringLiteral("Attribute name is empty"));
        return false;
    }
    return true;
}

bool HDF5Writer_V6::clearAttribute(hid_t location, const QString& name)
{
    if (attributeExists(location, name) && H5Adelete(location, objectName(name).constData()) < 0) {
        setLibraryError(QStringLiteral("Unable to replace attribute %1").arg(name));
        return false;
    }
    return true;
}

bool HDF5Writer_V6::writeAttribute(hid_t location, const QString& name, const QVariant& value)
{
    if (!canWriteAttribute(location, name))
        return false;
    // Work out what to write before touching the file, so an unhandled value leaves
    // any existing attribute as it was.
    const HDF5AttributeValue stored = HDF5AttributeValue::fromVariant(value);
    if (!stored.isValid()) {
        setError(QStringLiteral("Attribute %1: values of type %2 cannot be written")
                     .arg(name, QString::fromLatin1(value.typeName() ? value.typeName() : "invalid")));
        return false;
    }
    if (!clearAttribute(location, name))
        return false;
    if (!stored.create(location, objectName(name))) {
        setLibraryError(QStringLiteral("Unable to write attribute %1").arg(name));
        return false;
    }
    return true;
}

bool HDF5Writer_V6::writeAttribute(hid_t location, const QString& name,
                                   const std::vector<std::int32_t>& values, hsize_t rows, hsize_t columns)
{
    if (!canWriteAttribute(location, name))
        return false;
    if (values.size() != rows * columns) {
        setError(QStringLiteral("Attribute %1: %2 values do not fill %3 rows of %4")
                     .arg(name)
                     .arg(values.size())
                     .arg(rows)
                     .arg(columns));
        return false;
    }
    if (!clearAttribute(location, name))
        return false;
    const hsize_t extent[2] = {rows, columns};
    const HDF5Handle space(H5Screate_simple(2, extent, nullptr), H5Sclose);
    const HDF5Handle properties(H5Pcreate(H5P_ATTRIBUTE_CREATE), H5Pclose);
    H5Pset_char_encoding(properties.get(), H5T_CSET_UTF8);
    const HDF5Handle attribute(H5Acreate2(location, objectName(name).constData(), H5T_STD_I32LE, space.get(),
                                          properties.get(), H5P_DEFAULT),
                               H5Aclose);
    // An array of 0 rows is a valid attribute; there is nothing to write into it.
    if (!attribute.valid() ||
        (!values.empty() && H5Awrite(attribute.get(), H5T_NATIVE_INT32, values.data()) < 0)) {
        setLibraryError(QStringLiteral("Unable to write attribute %1").arg(name));
        return false;
    }
    return true;
}

bool HDF5Writer_V6::deleteAttribute(hid_t location, const QString& name)
{
    if (!attributeExists(location, name)) {
        if (isValidLocation(location))
            setError(QStringLiteral("Attribute not found: %1").arg(name));
        return false;
    }
    if (H5Adelete(location, objectName(name).constData()) < 0) {
        setLibraryError(QStringLiteral("Unable to delete attribute %1").arg(name));
        return false;
    }
    return true;
}

bool HDF5Writer_V6::renameAttribute(hid_t location, const QString& oldName, const QString& newName)
{
    if (!attributeExists(location, oldName)) {
        if (isValidLocation(location))
            setError(QStringLiteral("Attribute not found: %1").arg(oldName));
        return false;
    }
    if (oldName == newName)
        return true;
    if (newName.isEmpty() || attributeExists(location, newName)) {
        setError(newName.isEmpty() ? QStringLiteral("Attribute name is empty")
                                   : QStringLiteral("Attribute already exists: %1").arg(newName));
        return false;
    }
    if (H5Arename(location, objectName(oldName).constData(), objectName(newName).constData()) < 0) {
        setLibraryError(QStringLiteral("Unable to rename attribute %1 to %2").arg(oldName, newName));
        return false;
    }
    return true;
}

} // namespace zarvi
