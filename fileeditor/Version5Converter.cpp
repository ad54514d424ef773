#include "fileeditor/Version5Converter.h"

#include <QDir>
#include <QFileInfo>

#include "datafile/FileClassifier.h"
#include "datafile/HDF5Reader_V6.h"
#include "definitions/FileDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "framework/LockedFileRead.h"

namespace zarvi {

namespace {

using FD = FileDefinitions;
using Texts = FileEditorOperationDefinitions;

QString boldList(const QStringList& names)
{
    QStringList bold;
    for (const QString& name : names)
        bold << QStringLiteral("<b>%1</b>").arg(name);
    return bold.join(QStringLiteral(", "));
}

} // namespace

QString Version5Converter::defaultTargetPath(const QString& sourcePath)
{
    const QFileInfo source(sourcePath);
    return source.absoluteDir().filePath(source.completeBaseName() + Texts::Version6CopySuffix +
                                         FD::FileExtension);
}

ConversionResult Version5Converter::convert(const Version5ConversionConfig& config, Feedback* feedback)
{
    ConversionResult result;
    const QString targetPath =
        config.targetPath.isEmpty() ? defaultTargetPath(config.sourcePath) : config.targetPath;
    result.filepath = targetPath;
    if (!QFileInfo(config.sourcePath).isFile()) {
        result.error = Texts::missingFileMessage().arg(config.sourcePath);
        return result;
    }
    if (QFileInfo(targetPath).absoluteFilePath() == QFileInfo(config.sourcePath).absoluteFilePath()) {
        result.error = Texts::sameFileMessage();
        return result;
    }

    LockedFileRead read(config.sourcePath, LockedFileRead::Wait::Yes);
    if (!read.isOpen()) {
        result.title = FD::incorrectFileFormatTitle();
        result.error =
            Texts::unableToOpenMessage().arg(config.sourcePath) + QStringLiteral("<br>") + read.error();
        return result;
    }
    HDF5Reader_V6& source = read.reader();
    const VersionCheck check = FileClassifier::checkVersion5(source.readAllAttributes(source.fileId()));
    if (!check.accepted) {
        result.title = check.title;
        result.error = check.message;
        result.refused = true;
        return result;
    }
    if (!check.message.isEmpty())
        result.notes << check.message;
    QStringList groups;
    for (const QString& name : source.children(source.fileId())) {
        if (name != FD::Configurations && source.objectKind(source.fileId(), name) == ObjectKind::Group)
            groups << name;
    }
    if (groups.isEmpty()) {
        result.error = Texts::version5NoDataMessage().arg(config.sourcePath);
        return result;
    }

    ConversionTarget target;
    if (!target.open(targetPath, true, result.error))
        return result;
    ProgressTracker progress(feedback, static_cast<std::size_t>(groups.size()));
    progress.update(0);
    for (qsizetype g = 0; g < groups.size(); ++g) {
        // A group is copied in one library call, so a cancel takes effect between groups.
        if (progress.isCanceled()) {
            result.canceled = true;
            result.error = Texts::canceledMessage();
            break;
        }
        if (!target.file().copy(source.fileId(), groups[g], target.file().fileId(), groups[g])) {
            result.error = Texts::unableToCopyMessage().arg(groups[g], target.file().lastError());
            break;
        }
        progress.update(static_cast<std::size_t>(g + 1));
    }
    if (!result.ok() || !target.commit(result.error)) {
        target.rollback();
        result.notes.clear();
        return result;
    }
    result.datapaths = groups;
    result.notes << Texts::version5CopiedMessage().arg(config.sourcePath, boldList(groups), targetPath);
    return result;
}

} // namespace zarvi
