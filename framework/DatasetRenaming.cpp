#include "framework/DatasetRenaming.h"

#include "datafile/HDF5Writer_V6.h"
#include "definitions/DatasetDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "framework/FileAccessLock.h"

namespace zarvi {

namespace {

using DD = DatasetDefinitions;
using FD = FileDefinitions;

/// Datasets that readers find by their name inside a result's group.
bool isFixedDatasetName(const QString& name)
{
    return name == FD::Time || name == FD::SignalValues || name == FD::ImageStack || name == FD::EventNames ||
           name == FD::PeriodNames;
}

} // namespace

bool DatasetRenaming::isRenamable(const QString& path)
{
    const QStringList levels = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (levels.size() < 2 || (levels.first() != FD::DataProcessed && levels.first() != FD::DataAnalyzed))
        return false;
    return !FD::isStructuralName(levels.last()) && !isFixedDatasetName(levels.last());
}

QString DatasetRenaming::nameProblem(const QString& name)
{
    if (name.trimmed().isEmpty())
        return DD::renameEmptyMessage();
    for (const QString& text : HDF5Writer_V6::forbiddenNameTexts())
        if (name.contains(text))
            return DD::renameForbiddenTextMessage().arg(text);
    if (FD::isStructuralName(name) || isFixedDatasetName(name))
        return DD::renameReservedMessage().arg(name);
    return {};
}

DatasetRenaming::Result DatasetRenaming::rename(const QString& filepath, const QString& path,
                                                const QString& newName)
{
    Result result;
    if (!isRenamable(path)) {
        result.error = DD::renameRefusedMessage().arg(path);
        return result;
    }
    if (result.error = nameProblem(newName); !result.error.isEmpty())
        return result;
    QStringList levels = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    levels.last() = newName;
    const QString newPath = levels.join(QLatin1Char('/'));

    const auto lock = FileAccessLock::tryLock(filepath);
    if (!lock.owns_lock()) {
        result.busy = true;
        result.error = DD::fileBusyMessage();
        return result;
    }
    HDF5Writer_V6 writer;
    if (writer.open(filepath) < 0) {
        result.error = DD::renameFailedMessage().arg(path, writer.lastError());
        return result;
    }
    if (writer.exists(writer.fileId(), newPath)) {
        result.error = DD::renameExistsMessage().arg(newName);
        return result;
    }
    if (!writer.move(writer.fileId(), path, newPath)) {
        result.error = DD::renameFailedMessage().arg(path, writer.lastError());
        return result;
    }
    result.newPath = newPath;
    return result;
}

} // namespace zarvi
