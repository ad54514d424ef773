#include "behavior/VideoLink.h"

#include "datafile/HDF5Manager_V6.h"
#include "definitions/BehaviorViewDefinitions.h"
#include "definitions/FileDefinitions.h"

#include <QDir>
#include <QFileInfo>

namespace zarvi {

using FD = FileDefinitions;

QString VideoLink::locate(const QString& dataFilePath, QString& error) const
{
    const QDir folder = QFileInfo(dataFilePath).absoluteDir();
    const QString relative =
        relativeFilePath.isEmpty() ? QString() : folder.absoluteFilePath(relativeFilePath);
    if (!relative.isEmpty() && QFileInfo(relative).isFile())
        return QDir::cleanPath(relative);
    if (!filepath.isEmpty() && QFileInfo(filepath).isFile())
        return filepath;
    error = BehaviorViewDefinitions::videoNotFoundMessage().arg(path, relativeFilePath, filepath);
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
        links.push_back({node.path, a.value(FD::Filename).toString(), a.value(FD::Filepath).toString(),
                         a.value(FD::RelativeFilePath).toString(), a.value(FD::FrameRate).toDouble()});
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

} // namespace zarvi
