#include "app/NewDataFile.h"

#include "datafile/HDF5Writer_V6.h"
#include "definitions/DatasetDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/FileAccessLock.h"

#include <QFileInfo>

namespace zarvi {

QString NewDataFile::withExtension(const QString& path)
{
    if (path.isEmpty() || !QFileInfo(path).suffix().isEmpty())
        return path;
    return path + FileDefinitions::FileExtension;
}

bool NewDataFile::create(const QString& path, QString& error)
{
    const auto lock = FileAccessLock::tryLock(path);
    if (!lock.owns_lock()) {
        error = DatasetDefinitions::fileBusyMessage();
        return false;
    }
    HDF5Writer_V6 writer;
    if (writer.create(path) < 0) {
        error = ZarviMainDefinitions::unableToCreateFileMessage().arg(path) + QStringLiteral("<br>") +
                writer.lastError();
        return false;
    }
    const hid_t group = writer.createGroup(writer.fileId(), FileDefinitions::DataConverted);
    if (group < 0) {
        error = FileDefinitions::unableToCreateGroupMessage().arg(FileDefinitions::DataConverted);
        writer.closeFile();
        return false;
    }
    writer.closeGroup(group);
    writer.closeFile();
    return true;
}

} // namespace zarvi
