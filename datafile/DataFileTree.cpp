#include "datafile/DataFileTree.h"

#include <QSet>
#include <QStringList>

namespace zarvi {

namespace {

/// Where an object lies in its file, the same through every hard link to it; empty when
/// the library cannot tell.
QByteArray objectPlace(hid_t object)
{
#if H5_VERSION_GE(1, 12, 0)
    H5O_info2_t info;
    if (H5Oget_info3(object, &info, H5O_INFO_BASIC) < 0)
        return {};
    return QByteArray(reinterpret_cast<const char*>(&info.token), sizeof info.token);
#else
    H5O_info_t info;
    if (H5Oget_info2(object, &info, H5O_INFO_BASIC) < 0)
        return {};
    return QByteArray(reinterpret_cast<const char*>(&info.addr), sizeof info.addr);
#endif
}

/// Hard links may lead back to a group above (a cycle) or to one group from many places:
/// each group is walked once, and a group reached again is listed without its members, so
/// that the walk ends and lists no more nodes than the file has links.
void walk(HDF5Manager_V6& file, hid_t group, const QString& prefix, int depth, QSet<QByteArray>& walked,
          std::vector<DataFileNode>& out)
{
    for (const QString& name : file.children(group)) {
        DataFileNode node;
        node.name = name;
        node.path = prefix.isEmpty() ? name : prefix + QLatin1Char('/') + name;
        node.depth = depth;
        node.kind = file.objectKind(group, name);
        if (node.kind == ObjectKind::Group) {
            const hid_t child = file.openGroup(group, name);
            node.attributes = file.readAllAttributes(child);
            out.push_back(node);
            const QByteArray place = objectPlace(child);
            if (!place.isEmpty() && !walked.contains(place)) {
                walked.insert(place);
                walk(file, child, node.path, depth + 1, walked, out);
            }
            file.closeGroup(child);
        } else if (node.kind == ObjectKind::Dataset) {
            const hid_t dataset = file.openDataset(group, name);
            node.dimensions = file.dimensions(dataset);
            node.chunkDimensions = file.chunkDimensions(dataset);
            node.deflateLevel = file.deflateLevel(dataset);
            node.elementType = file.elementType(dataset);
            node.attributes = file.readAllAttributes(dataset);
            file.closeDataset(dataset);
            out.push_back(node);
        } else {
            out.push_back(node);
        }
    }
}

} // namespace

std::vector<DataFileNode> DataFileTree::collect(HDF5Manager_V6& file)
{
    std::vector<DataFileNode> nodes;
    if (!file.isOpen())
        return nodes;
    QSet<QByteArray> walked{objectPlace(file.fileId())};
    walk(file, file.fileId(), QString(), 0, walked, nodes);
    return nodes;
}

QString DataFileTree::typeName(const ElementType& type)
{
    switch (type.elementClass) {
    case ElementClass::Integer:
        return QStringLiteral("%1int%2")
            .arg(type.isSigned ? QString() : QStringLiteral("u"))
            .arg(type.size * 8);
    case ElementClass::Float:
        return QStringLiteral("float%1").arg(type.size * 8);
    case ElementClass::String:
        return QStringLiteral("string");
    case ElementClass::Other:
        break;
    }
    return QStringLiteral("other");
}

QString DataFileTree::shapeText(const std::vector<hsize_t>& dimensions)
{
    QStringList parts;
    for (hsize_t d : dimensions)
        parts << QString::number(d);
    return QLatin1Char('[') + parts.join(QStringLiteral(" x ")) + QLatin1Char(']');
}

QString DataFileTree::valueText(const QVariant& value)
{
    if (value.typeId() == QMetaType::QString)
        return QLatin1Char('"') + value.toString() + QLatin1Char('"');
    if (value.typeId() == QMetaType::QStringList || value.typeId() == QMetaType::QVariantList) {
        QStringList parts;
        for (const QVariant& item : value.toList())
            parts << valueText(item);
        return QLatin1Char('[') + parts.join(QStringLiteral(", ")) + QLatin1Char(']');
    }
    if (value.typeId() == QMetaType::Double)
        return QString::number(value.toDouble(), 'g', 17);
    return value.toString();
}

} // namespace zarvi
