#include "fileeditor/ConversionTarget.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include "definitions/FileDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "framework/FileAccessLock.h"

namespace zarvi {

namespace {

using FD = FileDefinitions;
using Texts = FileEditorOperationDefinitions;

QString withReason(const QString& message, const QString& reason)
{
    return reason.isEmpty() ? message : message + QStringLiteral("<br>") + reason;
}

} // namespace

ConversionTarget::~ConversionTarget()
{
    rollback();
}

bool ConversionTarget::open(const QString& filepath, bool mustBeNew, QString& error)
{
    m_path = filepath;
    m_lock = FileAccessLock::lock(filepath);
    if (QFileInfo::exists(filepath)) {
        if (mustBeNew) {
            error = Texts::version5TargetExistsMessage().arg(filepath);
            release();
            return false;
        }
        if (m_file.open(filepath) < 0) {
            error = withReason(Texts::unableToOpenMessage().arg(filepath), m_file.lastError());
            release();
            return false;
        }
        const hid_t root = m_file.fileId();
        if (m_file.readAttribute(root, FD::SoftwareName).toString().isEmpty())
            error = Texts::notVersion6TargetMessage().arg(filepath);
        else if (m_file.children(root).contains(FD::ExperimentDesign))
            error = Texts::experimentTargetMessage().arg(filepath);
        if (!error.isEmpty()) {
            m_file.closeFile();
            release();
            return false;
        }
        m_createdFile = false;
    } else {
        if (m_file.create(filepath) < 0) {
            error = Texts::unableToCreateMessage().arg(filepath, m_file.lastError());
            QFile::remove(filepath);
            release();
            return false;
        }
        m_createdFile = true;
    }
    m_finished = false;
    m_created.clear();
    return true;
}

int ConversionTarget::seriesNumber(const QString& device, const QString& kind, int named)
{
    if (named > 0)
        return named;
    const QString parent = QStringList{FD::DataConverted, device, kind}.join(QLatin1Char('/'));
    int highest = 0;
    if (m_file.objectKind(m_file.fileId(), parent) == ObjectKind::Group) {
        static const QRegularExpression numbered(QStringLiteral("^Series(\\d+)$"));
        const hid_t group = m_file.openGroup(m_file.fileId(), parent);
        for (const QString& child : m_file.children(group)) {
            const QRegularExpressionMatch match = numbered.match(child);
            if (match.hasMatch())
                highest = std::max(highest, match.captured(1).toInt());
        }
        m_file.closeGroup(group);
    }
    return highest + 1;
}

QString ConversionTarget::dataPath(const QString& device, const QString& kind, int series,
                                   const QString& name)
{
    return FD::DataPathPattern.arg(FD::DataConverted, device, kind, FD::SeriesPattern.arg(series), name);
}

bool ConversionTarget::isUsableName(const QString& name)
{
    if (name.trimmed().isEmpty() || FD::isStructuralName(name))
        return false;
    for (const QString& text : HDF5Writer_V6::forbiddenNameTexts()) {
        if (name.contains(text))
            return false;
    }
    return true;
}

void ConversionTarget::trackMissingLevels(const QString& path)
{
    const QStringList levels = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    QString prefix;
    for (const QString& level : levels) {
        prefix = prefix.isEmpty() ? level : prefix + QLatin1Char('/') + level;
        if (!m_file.exists(m_file.fileId(), prefix)) {
            m_created.push_back(prefix);
            return;
        }
    }
}

hid_t ConversionTarget::createGroup(const QString& path, QString& error)
{
    if (m_file.exists(m_file.fileId(), path)) {
        error = Texts::pathExistsMessage().arg(path, m_path);
        return H5I_INVALID_HID;
    }
    trackMissingLevels(path);
    const hid_t group = m_file.createGroupPath(m_file.fileId(), path);
    if (group < 0)
        error = withReason(FD::unableToCreateGroupMessage().arg(path), m_file.lastError());
    return group;
}

hid_t ConversionTarget::openOrCreateGroup(const QString& path, QString& error)
{
    if (!m_file.exists(m_file.fileId(), path))
        return createGroup(path, error);
    const hid_t group = m_file.openGroup(m_file.fileId(), path);
    if (group < 0)
        error = withReason(Texts::unableToOpenMessage().arg(path), m_file.lastError());
    return group;
}

hid_t ConversionTarget::createImageStack(const QString& groupPath, int height, int width, int bitCount,
                                         const QString& username, hid_t& group, QString& error)
{
    group = createGroup(groupPath, error);
    if (group < 0)
        return H5I_INVALID_HID;
    const hid_t stack =
        m_file.createImageStack(group, FD::ImageStack, height, width, FD::Format16BitGrayscale, bitCount, 0);
    if (stack >= 0 && m_file.writeAttribute(stack, FD::Username, username))
        return stack;
    error = withReason(FD::unableToCreateDatasetMessage().arg(groupPath + QLatin1Char('/') + FD::ImageStack),
                       m_file.lastError());
    m_file.closeDataset(stack);
    return H5I_INVALID_HID;
}

bool ConversionTarget::writeTimes(hid_t group, const QString& name, const std::vector<double>& times,
                                  QString& error)
{
    const hid_t dataset = m_file.create1D(group, ElementKind::Float64, name, times.size());
    const bool ok = dataset >= 0 && (times.empty() || m_file.append(dataset, times.data(), {times.size()})) &&
                    m_file.writeAttribute(dataset, FD::Unit, Texts::SecondsUnit);
    if (!ok)
        error = withReason(FD::unableToCreateDatasetMessage().arg(name), m_file.lastError());
    m_file.closeDataset(dataset);
    return ok;
}

bool ConversionTarget::commit(QString& error)
{
    if (m_finished)
        return true;
    const hid_t root = m_file.fileId();
    const bool ok = m_file.writeAttribute(root, FD::EditingSoftwareName, FD::SoftwareNameValue) &&
                    m_file.writeAttribute(root, FD::EditingSoftwareVersion, FD::SoftwareVersionValue) &&
                    m_file.writeAttribute(root, FD::Edited, QDateTime::currentDateTime().toString()) &&
                    m_file.flush();
    if (!ok) {
        error = Texts::unableToFinishMessage().arg(m_path, m_file.lastError());
        rollback();
        return false;
    }
    m_file.closeFile();
    m_finished = true;
    m_created.clear();
    release();
    return true;
}

void ConversionTarget::rollback()
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
    m_finished = true;
    release();
}

void ConversionTarget::release()
{
    if (m_lock.owns_lock())
        m_lock.unlock();
}

} // namespace zarvi
