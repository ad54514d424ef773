#include "datafile/DataFileTree.h"

#include <QStringList>

namespace zarvi {

namespace {

void walk(HDF5Manager_V6& file, hid_t group, const QString& prefix, int depth, std::vector<DataFileNode>& out)
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
            walk(file, child, node.path, depth + 1, out);
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
    if (file.isOpen())
        walk(file, file.fileId(), QString(), 0, nodes);
    return nodes;
}

QString DataFileTree::typeName(const ElementType& type)
{
    switch (type.elementClass) {
    case ElementClass::Integer:
        return QStringLiteral("%1int%2").arg(type.isSigned ? QString() : QStringLiteral("u")).arg(type.size * 8);
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
