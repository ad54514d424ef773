#include "fileeditor/FileCompaction.h"

#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"
#include "definitions/FileDefinitions.h"
#include "framework/FileAccessLock.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <filesystem>
#include <system_error>

namespace zarvi {

namespace {

FileCompaction::Result failed(FileCompaction::Result result, const QString& fileName, const QString& reason)
{
    result.error = FileDefinitions::repackFailedMessage().arg(fileName);
    result.reason = reason;
    return result;
}

/// Copies the content of source into the empty new file; false with `reason` set on failure.
bool copyContent(HDF5Reader_V6& source, HDF5Writer_V6& target, Feedback* feedback, bool& canceled,
                 QString& reason)
{
    const QStringList members = source.children(source.fileId());
    ProgressTracker progress(feedback, static_cast<std::size_t>(members.size()));
    for (qsizetype i = 0; i < members.size(); ++i) {
        if (progress.isCanceled()) {
            canceled = true;
            return false;
        }
        if (!target.copy(source.fileId(), members[i], target.fileId(), members[i])) {
            reason = target.lastError();
            return false;
        }
        progress.update(static_cast<std::size_t>(i + 1));
    }
    if (!target.copyAttributes(source.fileId(), target.fileId()) || !target.flush()) {
        reason = target.lastError();
        return false;
    }
    canceled = progress.isCanceled();
    return !canceled;
}

} // namespace

FileCompaction::Result FileCompaction::compact(const QString& path, Feedback* feedback)
{
    Result result;
    const auto lock = FileAccessLock::lock(path);
    const QFileInfo info(path);
    const QString fileName = info.fileName();
    if (!info.isFile())
        return failed(result, fileName, QStringLiteral("Not a file: %1").arg(path));
    // A link keeps pointing at the compacted file: the file it names is replaced, not the link.
    const QString target = info.isSymLink() ? info.canonicalFilePath() : info.absoluteFilePath();
    result.sizeBefore = info.size();

    HDF5Reader_V6 source;
    if (source.open(target) < 0)
        return failed(result, fileName, source.lastError());
    QTemporaryFile temporary(QFileInfo(target).absolutePath() + QLatin1Char('/') + fileName +
                             QStringLiteral(".compacting-XXXXXX"));
    if (!temporary.open())
        return failed(result, fileName, temporary.errorString());
    const QString temporaryPath = temporary.fileName();
    temporary.close(); // HDF5 writes it through a handle of its own

    HDF5Writer_V6 writer;
    if (writer.create(temporaryPath) < 0)
        return failed(result, fileName, writer.lastError());
    QString reason;
    const bool copied = copyContent(source, writer, feedback, result.canceled, reason);
    writer.closeFile();
    source.closeFile();
    if (result.canceled)
        return result;
    if (!copied)
        return failed(result, fileName, reason);

    if (!QFile::setPermissions(temporaryPath, QFile::permissions(target)))
        return failed(result, fileName,
                      QStringLiteral("Unable to set the permissions of %1").arg(temporaryPath));
    // One rename replaces the original: no reader ever sees a half-written file.
    std::error_code error;
    std::filesystem::rename(std::filesystem::path(QFile::encodeName(temporaryPath).toStdString()),
                            std::filesystem::path(QFile::encodeName(target).toStdString()), error);
    if (error)
        return failed(result, fileName, QString::fromStdString(error.message()));
    temporary.setAutoRemove(false); // its name is the original's now
    result.sizeAfter = QFileInfo(target).size();
    result.ok = true;
    return result;
}

} // namespace zarvi
