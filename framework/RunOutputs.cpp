#include "framework/RunOutputs.h"

#include "datafile/HDF5Writer_V6.h"
#include "definitions/FileDefinitions.h"
#include "framework/OutputLocation.h"

namespace zarvi {

RunOutputs::RunOutputs(HDF5Writer_V6& file, const QString& category, const QString& kind, const QString& outputName,
                       const QVariantMap& parameters, const QStringList& sourceDatapaths)
    : m_file(file), m_category(category), m_kind(kind), m_outputName(outputName), m_parameters(parameters),
      m_sourceDatapaths(sourceDatapaths)
{
}

QString RunOutputs::sensorGroup(const QString& inputPath, QString& error, const QString& sensor)
{
    const InputLevels levels = OutputLocation::levelsOf(inputPath);
    const QString series = OutputLocation::seriesGroup(m_category, m_kind, levels);
    QString runGroup = m_runGroups.value(series);
    if (runGroup.isEmpty()) {
        runGroup = OutputLocation::nextRunGroup(m_file, series, m_outputName);
        const hid_t group = m_file.createGroupPath(m_file.fileId(), runGroup);
        bool ok = group >= 0;
        for (auto it = m_parameters.cbegin(); ok && it != m_parameters.cend(); ++it)
            ok = m_file.writeAttribute(group, it.key(), it.value());
        ok = ok && m_file.writeAttribute(group, FileDefinitions::SourceDatapaths, m_sourceDatapaths);
        m_file.closeGroup(group);
        if (group >= 0)
            m_runGroups.insert(series, runGroup);
        if (!ok) {
            error = FileDefinitions::unableToCreateGroupMessage().arg(runGroup);
            return QString();
        }
    }
    const QString base = sensor.isEmpty() ? levels.sensor : sensor;
    QString name = base;
    for (int k = 2; m_file.exists(m_file.fileId(), runGroup + QLatin1Char('/') + name); ++k)
        name = QStringLiteral("%1_%2").arg(base).arg(k);
    return runGroup + QLatin1Char('/') + name;
}

QVariantMap RunOutputs::datasetAttributes(const QString& inputPath) const
{
    QVariantMap attributes = m_parameters;
    attributes.insert(FileDefinitions::SourceDatapath, inputPath);
    return attributes;
}

QString RunOutputs::writeSignal(const QString& inputPath, const Signal& signal, QString& error, const QString& sensor)
{
    const QString group = sensorGroup(inputPath, error, sensor);
    if (group.isEmpty() || !SignalDataset::write(m_file, group, signal, datasetAttributes(inputPath), error))
        return QString();
    return SignalDataset::valuesPath(group);
}

void RunOutputs::rollback()
{
    for (const QString& runGroup : std::as_const(m_runGroups))
        m_file.deleteLink(m_file.fileId(), runGroup);
    m_runGroups.clear();
}

} // namespace zarvi
