#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

namespace zarvi {

/// The isosbestic and biosensor signals of one recording, by their values paths.
struct PhotometryPair
{
    QString isosbestic;
    QString biosensor;

    bool operator==(const PhotometryPair&) const = default;
};

/// Pairs the signals of a photometry recording for the ΔF/F operation and its view.
/// Two signals belong to the same recording when their sensor groups sit in the same
/// group (same category, device, series and, for processed data, run group); a pair is
/// the signal of the isosbestic sensor with the signal of the biosensor there. Pure
/// path logic plus the caller's existence test; any thread.
class PhotometryPairs
{
public:
    /// Tells whether a values path exists in the file.
    using Exists = std::function<bool(const QString& path)>;

    /// One pair per recording that has a selected signal of either sensor and whose
    /// other signal exists (selected or not), in the order of the selection, each once.
    /// Signals of other sensors are ignored; equal sensor names pair nothing.
    static QList<PhotometryPair> find(const QStringList& selected, const QString& isosbesticName,
                                      const QString& biosensorName, const Exists& exists);

    /// The sensor level of a values path (the group holding the dataset), empty when
    /// the path is too short to have one.
    static QString sensorOf(const QString& valuesPath);
    /// The same values path with the sensor level replaced by `sensor`.
    static QString withSensor(const QString& valuesPath, const QString& sensor);
};

} // namespace zarvi
