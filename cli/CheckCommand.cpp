#include "cli/CheckCommand.h"

#include "datafile/DataFileTree.h"
#include "datafile/FileClassifier.h"
#include "datafile/HDF5Reader_V6.h"

#include <QTextStream>

namespace zarvi {

int CheckCommand::run(const QStringList& arguments)
{
    QTextStream out(stdout);
    if (arguments.size() != 1) {
        QTextStream(stderr) << "usage: zarvi-cli check FILE\n";
        return 2;
    }
    const QString path = arguments.first();
    const FileClassification classification = FileClassifier::classify(path);
    if (classification.kind == FileKind::Unrecognized) {
        out << "unrecognized\n" << classification.message << '\n';
        return 1;
    }
    HDF5Reader_V6 reader;
    if (reader.open(path) < 0) {
        out << "unrecognized\n" << reader.lastError() << '\n';
        return 1;
    }
    // The reads a tab makes when it shows the file; their values are not needed here.
    reader.readAllAttributes(reader.fileId());
    DataFileTree::collect(reader);
    out << (classification.kind == FileKind::Experiment ? "experiment" : "data") << '\n';
    return 0;
}

} // namespace zarvi
