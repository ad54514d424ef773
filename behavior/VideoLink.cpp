#include "behavior/VideoLink.h"

#include "datafile/HDF5Manager_V6.h"
#include "definitions/FileDefinitions.h"
#include "definitions/VideoOperationDefinitions.h"

#include <QDir>
#include <QFileInfo>

namespace zarvi {

using FD = FileDefinitions;
using VD = VideoOperationDefinitions;

bool VideoLink::read(HDF5Manager_V6& file, const QString& dataFilePath, const QString& linkPath,
                     VideoLink& link, QString& error)
{
    link = VideoLink();
    link.path = linkPath;
    const hid_t root = file.fileId();
    const QString timePath = linkPath + QLatin1Char('/') + FD::Time;
    if (file.objectKind(root, linkPath) != ObjectKind::Group ||
        file.objectKind(root, timePath) != ObjectKind::Dataset) {
        error = VD::notVideoLinkMessage().arg(linkPath);
        return false;
    }
    const hid_t group = file.openGroup(root, linkPath);
    const QString absolute = file.readAttribute(group, FD::Filepath).toString();
    link.relativeFilePath = file.readAttribute(group, FD::RelativeFilePath).toString();
    link.filename = file.readAttribute(group, FD::Filename).toString();
    file.closeGroup(group);
    if (absolute.isEmpty() && link.relativeFilePath.isEmpty()) {
        error = VD::notVideoLinkMessage().arg(linkPath);
        return false;
    }
    const hid_t time = file.openDataset(root, timePath);
    const bool timeRead = time >= 0 && file.dimensions(time).size() == 1 && file.read(time, link.time);
    file.closeDataset(time);
    if (!timeRead) {
        error = VD::notVideoLinkMessage().arg(linkPath);
        return false;
    }

    // The relative path first: a folder moved as a whole keeps its videos.
    const QDir dataFolder = QFileInfo(dataFilePath).absoluteDir();
    const QString relative = link.relativeFilePath.isEmpty()
                                 ? QString()
                                 : QDir::cleanPath(dataFolder.filePath(link.relativeFilePath));
    if (!relative.isEmpty() && QFileInfo(relative).isFile())
        link.videoPath = relative;
    else if (!absolute.isEmpty() && QFileInfo(absolute).isFile())
        link.videoPath = QFileInfo(absolute).absoluteFilePath();
    else {
        error = VD::videoNotFoundMessage().arg(linkPath, relative, absolute);
        return false;
    }
    if (link.filename.isEmpty())
        link.filename = QFileInfo(link.videoPath).fileName();
    return true;
}

} // namespace zarvi
