#include "framework/DatasetDeletion.h"

#include "datafile/HDF5Writer_V6.h"
#include "definitions/DatasetDefinitions.h"
#include "framework/FileAccessLock.h"

#include <algorithm>

namespace zarvi {

bool DatasetDeletion::isSameOrUnder(const QString& path, const QString& ancestor)
{
    return path == ancestor || path.startsWith(ancestor + QLatin1Char('/'));
}

QStringList DatasetDeletion::outermost(const QStringList& paths)
{
    QStringList result;
    for (const QString& path : paths) {
        const bool covered = std::any_of(paths.begin(), paths.end(), [&](const QString& other) {
            return other != path && isSameOrUnder(path, other);
        });
        if (!covered)
            result << path;
    }
    return result;
}

DatasetDeletion::Result DatasetDeletion::remove(const QString& filepath, const QStringList& paths)
{
    Result result;
    const auto lock = FileAccessLock::tryLock(filepath);
    if (!lock.owns_lock()) {
        result.busy = true;
        return result;
    }
    HDF5Writer_V6 writer;
    if (writer.open(filepath) < 0) {
        result.openError = writer.lastError();
        return result;
    }
    for (const QString& path : paths)
        if (!writer.deleteLink(writer.fileId(), path))
            result.failures << DatasetDefinitions::deleteFailedMessage().arg(path, writer.lastError());
    return result;
}

} // namespace zarvi
