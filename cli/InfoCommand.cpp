#include "cli/InfoCommand.h"

#include "cli/TerminalProgress.h"

#include "datafile/DataFileTree.h"
#include "datafile/FileClassifier.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/SuperblockRepair.h"

#include <QTextStream>

namespace zarvi {

namespace {

QString kindText(FileKind kind)
{
    switch (kind) {
    case FileKind::Experiment:
        return QStringLiteral("experiment file");
    case FileKind::Data:
        return QStringLiteral("data file");
    case FileKind::Unrecognized:
        break;
    }
    return QStringLiteral("unrecognized");
}

/// Prints the attributes of the object at `location`. A list of one element reads back
/// as that element, so its dataspace decides whether it is shown as a list.
void printAttributes(QTextStream& out, HDF5Reader_V6& reader, hid_t location, const QVariantMap& attributes,
                     const QString& indent)
{
    for (auto it = attributes.cbegin(); it != attributes.cend(); ++it) {
        QString text = DataFileTree::valueText(it.value());
        if (!text.startsWith(QLatin1Char('[')) && location >= 0 &&
            reader.attributeDimensions(location, it.key()) == std::vector<hsize_t>{1})
            text = QLatin1Char('[') + text + QLatin1Char(']');
        out << indent << '@' << it.key() << " = " << text << '\n';
    }
}

} // namespace

int InfoCommand::run(const QStringList& arguments)
{
    QTextStream out(stdout);
    QTextStream err(stderr);
    if (arguments.size() != 1) {
        err << "usage: zarvi-cli info FILE\n";
        return 2;
    }
    const QString path = arguments.first();
    const FileClassification classification = FileClassifier::classify(path);
    out << "File: " << path << '\n';
    out << "Classification: " << kindText(classification.kind) << '\n';
    if (!classification.message.isEmpty())
        out << "Message: " << classification.message << '\n';
    if (!classification.detail.isEmpty()) {
        err << "Error: " << classification.detail << '\n';
        return 1;
    }

    // An object the library cannot reach is what a write killed half-way leaves.
    if (!SuperblockRepair::readsWhole(path)) {
        err << "Error: " << TerminalProgress::plainText(SuperblockRepair::damagedMessage(path)) << '\n';
        return 1;
    }
    HDF5Reader_V6 reader;
    if (reader.open(path) < 0) {
        err << "Error: " << reader.lastError() << '\n';
        return 1;
    }
    out << "Root attributes:\n";
    printAttributes(out, reader, reader.fileId(), reader.readAllAttributes(reader.fileId()),
                    QStringLiteral("  "));
    out << "Tree:\n";
    for (const DataFileNode& node : DataFileTree::collect(reader)) {
        const QString indent(2 * (node.depth + 1), QLatin1Char(' '));
        out << indent << node.name;
        if (node.kind == ObjectKind::Group) {
            out << "/\n";
        } else if (node.kind == ObjectKind::Dataset) {
            out << "  " << DataFileTree::typeName(node.elementType) << ' '
                << DataFileTree::shapeText(node.dimensions);
            if (!node.chunkDimensions.empty())
                out << "  chunks " << DataFileTree::shapeText(node.chunkDimensions);
            if (node.deflateLevel > 0)
                out << "  deflate " << node.deflateLevel;
            out << '\n';
        } else {
            out << "  (other object)\n";
        }
        const bool group = node.kind == ObjectKind::Group;
        const hid_t location = group ? reader.openGroup(reader.fileId(), node.path)
                               : node.kind == ObjectKind::Dataset
                                   ? reader.openDataset(reader.fileId(), node.path)
                                   : hid_t(-1);
        printAttributes(out, reader, location, node.attributes, indent + QStringLiteral("    "));
        if (location >= 0 && group)
            reader.closeGroup(location);
        else if (location >= 0)
            reader.closeDataset(location);
    }
    return classification.kind == FileKind::Unrecognized ? 1 : 0;
}

} // namespace zarvi
