#pragma once

#include "datafile/SignalDataset.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace zarvi {

class HDF5Writer_V6;

/// The outputs of one run in the file: opens a numbered run group per input
/// series on first use (recording the parameters on it), hands out sensor
/// groups inside it, and removes everything it made when the run fails or is
/// cancelled, so that a file never keeps half a result. Lives on the worker thread.
class RunOutputs
{
public:
    RunOutputs(HDF5Writer_V6& file, const QString& category, const QString& kind, const QString& outputName,
               const QVariantMap& parameters, const QStringList& sourceDatapaths);

    /// A new, unique sensor group for an output derived from `inputPath`
    /// (named `sensor`, or after the input's sensor). Empty with `error` set on failure.
    QString sensorGroup(const QString& inputPath, QString& error, const QString& sensor = QString());
    /// Writes a signal into a new sensor group with the parameters and its
    /// "SourceDatapath"; returns the written values path, empty on failure.
    QString writeSignal(const QString& inputPath, const Signal& signal, QString& error,
                        const QString& sensor = QString());
    /// Attributes every values dataset of the run carries.
    QVariantMap datasetAttributes(const QString& inputPath) const;
    /// Deletes every run group this object created.
    void rollback();

private:
    HDF5Writer_V6& m_file;
    QString m_category;
    QString m_kind;
    QString m_outputName;
    QVariantMap m_parameters;
    QStringList m_sourceDatapaths;
    QMap<QString, QString> m_runGroups; ///< series group -> run group
};

} // namespace zarvi
