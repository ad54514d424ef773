#include "cli/InfoCommand.h"

#include "datafile/DataFileTree.h"
#include "datafile/FileClassifier.h"
#include "datafile/HDF5Reader_V6.h"

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

void printAttributes(QTextStream& out, const QVariantMap& attributes, const QString& indent)
{
    for (auto it = attributes.cbegin(); it != attributes.cend(); ++it)
        out << indent << '@' << it.key() << " = " << DataFileTree::valueText(it.value()) << '\n';
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

    HDF5Reader_V6 reader;
    if (reader.open(path) < 0) {
        err << "Error: " << reader.lastError() << '\n';
        return 1;
    }
    out << "Root attributes:\n";
    printAttributes(out, reader.readAllAttributes(reader.fileId()), QStringLiteral("  "));
    out << "Tree:\n";
    for (const DataFileNode& node : DataFileTree::collect(reader)) {
        const QString indent(2 * (node.depth + 1), QLatin1Char(' '));
        out << indent << node.name;
        if (node.kind == ObjectKind::Group) {
            out << "/\n";
        } else if (node.kind == ObjectKind::Dataset) {
            out << "  " << DataFileTree::typeName(node.elementType) << ' ' << DataFileTree::shapeText(node.dimensions);
            if (!node.chunkDimensions.empty())
                out << "  chunks " << DataFileTree::shapeText(node.chunkDimensions);
            if (node.deflateLevel > 0)
                out << "  deflate " << node.deflateLevel;
            out << '\n';
        } else {
            out << "  (other object)\n";
        }
        printAttributes(out, node.attributes, indent + QStringLiteral("    "));
    }
    return classification.kind == FileKind::Unrecognized ? 1 : 0;
}

} // namespace zarvi
