#include "framework/RunTransaction.h"

#include "definitions/FileDefinitions.h"
#include "framework/FileAccessLock.h"
#include "framework/OutputLocation.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace zarvi {

namespace {

using FD = FileDefinitions;

QString withReason(const QString& message, const QString& reason)
{
    return reason.isEmpty() ? message : message + QStringLiteral("<br>") + reason;
}

} // namespace

RunTransaction::~RunTransaction()
{
    rollback();
}

bool RunTransaction::open(const QString& filepath, FileMode mode)
{
    m_path = filepath;
    m_error.clear();
    m_lock = FileAccessLock::lock(filepath);
    m_createdFile = mode == FileMode::CreateIfMissing && !QFileInfo::exists(filepath);
    const hid_t id = m_createdFile ? m_file.create(filepath) : m_file.open(filepath);
    if (id < 0) {
        m_error = m_file.lastError();
        if (m_createdFile)
            QFile::remove(filepath);
        release();
        return false;
    }
    m_finished = false;
    m_created.clear();
    m_runGroups.clear();
    return true;
}

void RunTransaction::trackMissingLevels(const QString& path)
{
    const QStringList levels = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    QString prefix;
    for (const QString& level : levels) {
        prefix = prefix.isEmpty() ? level : prefix + QLatin1Char('/') + level;
        // Inside a level this run made, rollback removes it with that level.
        if (std::find(m_created.cbegin(), m_created.cend(), prefix) != m_created.cend())
            return;
        if (!m_file.exists(m_file.fileId(), prefix)) {
            m_created.push_back(prefix);
            return;
        }
    }
}

hid_t RunTransaction::createGroup(const QString& path, const QString& existsMessage, QString& error)
{
    if (m_file.exists(m_file.fileId(), path)) {
        error = existsMessage.arg(path, m_path);
        return H5I_INVALID_HID;
    }
    trackMissingLevels(path);
    const hid_t group = m_file.createGroupPath(m_file.fileId(), path);
    if (group < 0) {
        error = withReason(FD::unableToCreateGroupMessage().arg(path), m_file.lastError());
        return H5I_INVALID_HID;
    }
    return group;
}

void RunTransaction::track(const QString& path)
{
    m_created.push_back(path);
}

QString RunTransaction::sensorGroup(const QString& inputPath, QString& error, const QString& sensor)
{
    const InputLevels levels = OutputLocation::levelsOf(inputPath);
    const QString series = OutputLocation::seriesGroup(m_outputs.category, m_outputs.kind, levels);
    QString runGroup = m_runGroups.value(series);
    if (runGroup.isEmpty()) {
        runGroup = OutputLocation::nextRunGroup(m_file, series, m_outputs.outputName);
        trackMissingLevels(runGroup);
        const hid_t group = m_file.createGroupPath(m_file.fileId(), runGroup);
        bool ok = group >= 0;
        if (m_outputs.recordParameters) {
            for (auto it = m_outputs.parameters.cbegin(); ok && it != m_outputs.parameters.cend(); ++it)
                ok = m_file.writeAttribute(group, it.key(), it.value());
            ok = ok && m_file.writeAttribute(group, FD::SourceDatapaths, m_outputs.sources);
        }
        m_file.closeGroup(group);
        if (group >= 0)
            m_runGroups.insert(series, runGroup);
        if (!ok) {
            error = FD::unableToCreateGroupMessage().arg(runGroup);
            return QString();
        }
    }
    const QString base = sensor.isEmpty() ? levels.sensor : sensor;
    QString name = base;
    for (int k = 2; m_file.exists(m_file.fileId(), runGroup + QLatin1Char('/') + name); ++k)
        name = QStringLiteral("%1_%2").arg(base).arg(k);
    return runGroup + QLatin1Char('/') + name;
}

QVariantMap RunTransaction::datasetAttributes(const QString& inputPath) const
{
    if (!m_outputs.recordParameters)
        return {};
    QVariantMap attributes = m_outputs.parameters;
    attributes.insert(FD::SourceDatapath, inputPath);
    return attributes;
}

QString RunTransaction::writeSignal(const QString& inputPath, const Signal& signal, QString& error,
                                    const QString& sensor, const QVariantMap& extra)
{
    const QString group = sensorGroup(inputPath, error, sensor);
    QVariantMap attributes = datasetAttributes(inputPath);
    attributes.insert(extra);
    if (group.isEmpty() || !SignalDataset::write(m_file, group, signal, attributes, error))
        return QString();
    return SignalDataset::valuesPath(group);
}

QString RunTransaction::writeSignalWithInputTime(const QString& inputPath, const Signal& signal,
                                                 QString& error, const QString& sensor,
                                                 const QVariantMap& extra)
{
    const QString group = sensorGroup(inputPath, error, sensor);
    QVariantMap attributes = datasetAttributes(inputPath);
    attributes.insert(extra);
    if (group.isEmpty() ||
        !SignalDataset::writeWithTimeOf(m_file, group, inputPath, signal, attributes, error))
        return QString();
    return SignalDataset::valuesPath(group);
}

bool RunTransaction::commit(bool markEdited)
{
    if (m_finished)
        return true;
    const hid_t root = m_file.fileId();
    const bool ok =
        !markEdited ||
        (m_file.writeAttribute(root, FD::EditingSoftwareName, FD::SoftwareNameValue) &&
         m_file.writeAttribute(root, FD::EditingSoftwareVersion, FD::SoftwareVersionValue) &&
         m_file.writeAttribute(root, FD::Edited, QDateTime::currentDateTime().toString()) && m_file.flush());
    if (!ok) {
        m_error = m_file.lastError();
        rollback();
        return false;
    }
    m_file.closeFile();
    m_finished = true;
    m_created.clear();
    m_runGroups.clear();
    release();
    return true;
}

void RunTransaction::rollback()
{
    if (m_finished)
        return;
    if (m_createdFile) {
        m_file.closeFile();
        QFile::remove(m_path);
    } else {
        // Later entries may lie inside earlier ones; deleting the outer level first is harmless.
        for (auto it = m_created.rbegin(); it != m_created.rend(); ++it) {
            if (m_file.exists(m_file.fileId(), *it))
                m_file.deleteLink(m_file.fileId(), *it);
        }
        m_file.closeFile();
    }
    m_created.clear();
    m_runGroups.clear();
    m_finished = true;
    release();
}

void RunTransaction::release()
{
    if (m_lock.owns_lock())
        m_lock.unlock();
}

} // namespace zarvi
