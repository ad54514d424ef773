#include "framework/OutputLocation.h"

#include "datafile/HDF5Manager_V6.h"
#include "definitions/FileDefinitions.h"

#include <QRegularExpression>
#include <QStringList>

namespace zarvi {

InputLevels OutputLocation::levelsOf(const QString& inputPath)
{
    const QStringList parts = inputPath.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    InputLevels levels;
    levels.device = parts.size() > 1 ? parts[1] : QStringLiteral("Device");
    levels.series = FileDefinitions::SeriesPattern.arg(1);
    for (const QString& part : parts)
        if (part.contains(FileDefinitions::SeriesText)) {
            levels.series = part;
            break;
        }
    levels.sensor = parts.size() > 1 ? parts[parts.size() - 2] : FileDefinitions::SensorPattern.arg(1);
    return levels;
}

QString OutputLocation::seriesGroup(const QString& category, const QString& kind, const InputLevels& levels)
{
    return QStringList{category, levels.device, kind, levels.series}.join(QLatin1Char('/'));
}

QString OutputLocation::nextRunGroup(HDF5Manager_V6& file, const QString& seriesGroup, const QString& outputName)
{
    int highest = 0;
    if (file.exists(file.fileId(), seriesGroup)) {
        const QRegularExpression numbered(QStringLiteral("^%1(\\d+)$").arg(QRegularExpression::escape(outputName)));
        const hid_t group = file.openGroup(file.fileId(), seriesGroup);
        for (const QString& child : file.children(group)) {
            const QRegularExpressionMatch match = numbered.match(child);
            if (match.hasMatch())
                highest = std::max(highest, match.captured(1).toInt());
        }
        file.closeGroup(group);
    }
    return seriesGroup + QLatin1Char('/') + outputName + QString::number(highest + 1);
}

} // namespace zarvi
