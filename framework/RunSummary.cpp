#include "framework/RunSummary.h"

#include "definitions/ZarviMainDefinitions.h"

#include <QMap>

namespace zarvi {

namespace {

/// Levels of an output path: category, device, kind, series, output group, sensor.
constexpr qsizetype OutputLevel = 4;
constexpr qsizetype SensorLevel = 5;

} // namespace

QString RunSummary::describe(const QStringList& datapaths)
{
    // Output groups in the order the run wrote them, each with its sensors.
    QStringList groups;
    QMap<QString, QStringList> sensors;
    for (const QString& path : datapaths) {
        const QStringList levels = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
        if (levels.size() <= OutputLevel)
            continue;
        const QString group = levels[OutputLevel];
        if (!groups.contains(group))
            groups << group;
        const QString sensor = levels.value(SensorLevel);
        if (!sensor.isEmpty() && !sensors[group].contains(sensor))
            sensors[group] << sensor;
    }
    QStringList parts;
    for (const QString& group : groups)
        parts << ZarviMainDefinitions::writtenGroupText().arg(group).arg(
            ZarviMainDefinitions::signalCountText(static_cast<int>(sensors.value(group).size())));
    return parts.join(QStringLiteral("; "));
}

} // namespace zarvi
