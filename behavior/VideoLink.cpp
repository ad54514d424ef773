#include "behavior/VideoLink.h"

#include "datafile/HDF5Manager_V6.h"
#include "definitions/FileDefinitions.h"
#include "definitions/VideoOperationDefinitions.h"

#include <QDir>
#include <QFileInfo>

namespace zarvi {

using FD = FileDefinitions;
using VD = VideoOperationDefinitions;

QString VideoLink::locate(const QString& dataFilePath, QString& error) const
{
    // The relative path first: a folder moved as a whole keeps its videos.
    const QDir folder = QFileInfo(dataFilePath).absoluteDir();
    const QString relative =
        relativeFilePath.isEmpty() ? QString() : QDir::cleanPath(folder.absoluteFilePath(relativeFilePath));
    if (!relative.isEmpty() && QFileInfo(relative).isFile())
        return relative;
    if (!filepath.isEmpty() && QFileInfo(filepath).isFile())
        return QFileInfo(filepath).absoluteFilePath();
    error = VD::videoNotFoundMessage().arg(path, relative, filepath);
    return QString();
}

std::vector<VideoLink> VideoLink::find(const std::vector<DataFileNode>& nodes)
{
    std::vector<VideoLink> links;
    for (const DataFileNode& node : nodes) {
        if (node.kind != ObjectKind::Group || !node.path.split(QLatin1Char('/')).contains(FD::Video))
            continue;
        const QVariantMap& a = node.attributes;
        if (!a.contains(FD::Filepath) && !a.contains(FD::RelativeFilePath))
            continue;
        VideoLink link;
        link.path = node.path;
        link.filename = a.value(FD::Filename).toString();
        link.filepath = a.value(FD::Filepath).toString();
        link.relativeFilePath = a.value(FD::RelativeFilePath).toString();
        link.frameRate = a.value(FD::FrameRate).toDouble();
        links.push_back(link);
    }
    return links;
}

bool VideoLink::readTime(HDF5Manager_V6& file, const QString& linkPath, std::vector<double>& time,
                         QString& error)
{
    const QString timePath = linkPath + QLatin1Char('/') + FD::Time;
    const hid_t dataset = file.openDataset(file.fileId(), timePath);
    const bool read = dataset >= 0 && file.dimensions(dataset).size() == 1 && file.read(dataset, time);
    file.closeDataset(dataset);
    if (!read)
        error = FD::datasetNotFoundMessage().arg(timePath);
    return read;
}

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
    link.filepath = file.readAttribute(group, FD::Filepath).toString();
    link.relativeFilePath = file.readAttribute(group, FD::RelativeFilePath).toString();
    link.filename = file.readAttribute(group, FD::Filename).toString();
    link.frameRate = file.readAttribute(group, FD::FrameRate).toDouble();
    file.closeGroup(group);
    QString ignored;
    if ((link.filepath.isEmpty() && link.relativeFilePath.isEmpty()) ||
        !readTime(file, linkPath, link.time, ignored)) {
        error = VD::notVideoLinkMessage().arg(linkPath);
        return false;
    }
    link.videoPath = link.locate(dataFilePath, error);
    if (link.videoPath.isEmpty())
        return false;
    if (link.filename.isEmpty())
        link.filename = QFileInfo(link.videoPath).fileName();
    return true;
}

} // namespace zarvi
