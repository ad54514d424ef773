#include "signal/operations/photometry/PhotometryPairs.h"

namespace zarvi {

namespace {

/// Positions of the two last separators of a values path: before the sensor and before
/// the dataset; false when there is no sensor level.
bool sensorBounds(const QString& valuesPath, qsizetype& before, qsizetype& last)
{
    last = valuesPath.lastIndexOf(QLatin1Char('/'));
    if (last <= 0)
        return false;
    before = valuesPath.lastIndexOf(QLatin1Char('/'), last - 1);
    return last - before > 1;
}

} // namespace

QString PhotometryPairs::sensorOf(const QString& valuesPath)
{
    qsizetype before = 0, last = 0;
    return sensorBounds(valuesPath, before, last) ? valuesPath.mid(before + 1, last - before - 1) : QString();
}

QString PhotometryPairs::withSensor(const QString& valuesPath, const QString& sensor)
{
    qsizetype before = 0, last = 0;
    if (!sensorBounds(valuesPath, before, last))
        return QString();
    return valuesPath.left(before + 1) + sensor + valuesPath.mid(last);
}

QList<PhotometryPair> PhotometryPairs::find(const QStringList& selected, const QString& isosbesticName,
                                            const QString& biosensorName, const Exists& exists)
{
    QList<PhotometryPair> pairs;
    if (isosbesticName.isEmpty() || biosensorName.isEmpty() || isosbesticName == biosensorName)
        return pairs;
    for (const QString& path : selected) {
        const QString sensor = sensorOf(path);
        PhotometryPair pair;
        if (sensor == isosbesticName)
            pair = {path, withSensor(path, biosensorName)};
        else if (sensor == biosensorName)
            pair = {withSensor(path, isosbesticName), path};
        else
            continue;
        if (pairs.contains(pair))
            continue;
        const QString& partner = sensor == isosbesticName ? pair.biosensor : pair.isosbestic;
        if (selected.contains(partner) || exists(partner))
            pairs << pair;
    }
    return pairs;
}

} // namespace zarvi
