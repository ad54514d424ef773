#include "datafile/FileClassifier.h"

#include "datafile/HDF5Reader_V6.h"
#include "datafile/SuperblockRepair.h"
#include "definitions/FileDefinitions.h"

namespace zarvi {

FileKind FileClassifier::classifyRootGroups(const QStringList& rootGroups)
{
    if (rootGroups.contains(FileDefinitions::ExperimentDesign))
        return FileKind::Experiment;
    if (rootGroups.contains(FileDefinitions::DataAcquisition) ||
        rootGroups.contains(FileDefinitions::DataConverted))
        return FileKind::Data;
    return FileKind::Unrecognized;
}

FileClassification FileClassifier::classify(const QString& path)
{
    FileClassification result;
    HDF5Reader_V6 reader;
    if (reader.open(path) < 0) {
        result.message = reader.isFileInUse() || SuperblockRepair::looksInterrupted(path)
                             ? reader.lastError()
                             : FileDefinitions::unrecognizedFileMessage();
        result.detail = reader.lastError();
        return result;
    }
    result.rootGroups = reader.children(reader.fileId());
    result.kind = classifyRootGroups(result.rootGroups);
    if (result.kind == FileKind::Unrecognized)
        result.message = FileDefinitions::unrecognizedFileMessage();
    return result;
}

VersionCheck FileClassifier::checkVersion5(const QVariantMap& rootAttributes)
{
    VersionCheck check;
    const QString softwareName = rootAttributes.value(FileDefinitions::SoftwareName).toString();
    const QString fileType = rootAttributes.value(FileDefinitions::FileType).toString();
    if (!softwareName.isEmpty()) {
        check.title = FileDefinitions::FileVersionFilterPattern.arg(6);
        check.message = FileDefinitions::latestVersionMessage();
        return check;
    }
    if (!fileType.contains(QStringLiteral("Data"), Qt::CaseSensitive)) {
        check.title = FileDefinitions::FileVersionFilterPattern.arg(5);
        check.message = FileDefinitions::configurationOnlyMessage();
        return check;
    }
    check.accepted = true;
    // Unreachable while acceptance requires "Data" in FileType, but kept as the
    // converter has always tested it.
    if (softwareName.isEmpty() && fileType.isEmpty()) {
        check.title = FileDefinitions::incorrectFileFormatTitle();
        check.message = FileDefinitions::notOrvelFormatMessage();
    }
    return check;
}

VersionCheck FileClassifier::checkVersion5(const QString& path)
{
    HDF5Reader_V6 reader;
    if (reader.open(path) < 0) {
        VersionCheck check;
        check.title = FileDefinitions::incorrectFileFormatTitle();
        check.message = reader.lastError();
        return check;
    }
    return checkVersion5(reader.readAllAttributes(reader.fileId()));
}

QString FileClassifier::tabTitle(FileKind kind, const QString& path)
{
    const QString name = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
    return kind == FileKind::Experiment ? FileDefinitions::experimentTabTitle().arg(name)
                                        : FileDefinitions::dataTabTitle().arg(name);
}

} // namespace zarvi
