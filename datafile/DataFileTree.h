#pragma once

#include "datafile/ElementKind.h"
#include "datafile/HDF5Manager_V6.h"

#include <QString>
#include <QVariantMap>

#include <vector>

namespace zarvi {

/// One group or dataset of a data file, as the browsers show it.
struct DataFileNode
{
    QString path; ///< full path without the leading "/"
    QString name;
    int depth = 0; ///< 0 for the root's children
    ObjectKind kind = ObjectKind::Missing;
    std::vector<hsize_t> dimensions;
    std::vector<hsize_t> chunkDimensions;
    int deflateLevel = 0;
    ElementType elementType;
    QVariantMap attributes;
};

/// Walks an open file depth-first, groups before their members, members in name
/// order; each group is walked once, so a group reached again through another hard link
/// (or from inside itself) is listed without its members. Used by the command-line
/// inspector and the file browser; runs on the thread that holds the file.
class DataFileTree
{
public:
    static std::vector<DataFileNode> collect(HDF5Manager_V6& file);
    /// "uint16", "float64", "string", ... for display.
    static QString typeName(const ElementType& type);
    /// "[256 x 256 x 500]".
    static QString shapeText(const std::vector<hsize_t>& dimensions);
    /// An attribute value as text: strings quoted, lists in brackets.
    static QString valueText(const QVariant& value);
};

} // namespace zarvi
