#include "framework/PipelineHistory.h"

#include "definitions/FileDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/LockedFileRead.h"
#include "framework/OperationRegistry.h"

#include <QHash>
#include <QSet>

#include <optional>

namespace zarvi {

namespace {

using FD = FileDefinitions;
using ZD = ZarviMainDefinitions;

QString cleanPath(QString path)
{
    while (path.startsWith(QLatin1Char('/')))
        path.remove(0, 1);
    return path;
}

QString parentOf(const QString& path)
{
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : path.left(slash);
}

/// Walks the recorded inputs of one open file, remembering what it has read.
class HistoryWalk
{
public:
    explicit HistoryWalk(HDF5Reader_V6& file) : m_file(file) {}

    /// The steps that produced `path`, oldest first, and the data the chain starts from.
    /// `usedBy` is the result computed from `path`, for messages.
    bool steps(const QString& path, const QString& usedBy, QList<QVariantMap>& steps, QString& origin,
               QString& error);
    /// The path of the first member of a group (in name order) that records an operation.
    QString firstResultIn(const QString& group);
    std::optional<QVariantMap> attributes(const QString& path);

private:
    /// The recorded inputs of the run that wrote `path`: its own, or those of its run group.
    QStringList runInputs(const QString& path, const QVariantMap& attributes);
    bool declaredStep(const QString& path, const QVariantMap& attributes, QVariantMap& step, QString& error);

    HDF5Reader_V6& m_file;
    QHash<QString, QVariantMap> m_attributes;
    QHash<QString, QList<QVariantMap>> m_steps;
    QHash<QString, QString> m_origins;
    QSet<QString> m_walking;
};

std::optional<QVariantMap> HistoryWalk::attributes(const QString& path)
{
    if (const auto it = m_attributes.constFind(path); it != m_attributes.cend())
        return *it;
    QVariantMap read;
    switch (m_file.objectKind(m_file.fileId(), path)) {
    case ObjectKind::Group: {
        const hid_t group = m_file.openGroup(m_file.fileId(), path);
        read = m_file.readAllAttributes(group);
        m_file.closeGroup(group);
        break;
    }
    case ObjectKind::Dataset: {
        const hid_t dataset = m_file.openDataset(m_file.fileId(), path);
        read = m_file.readAllAttributes(dataset);
        m_file.closeDataset(dataset);
        break;
    }
    default:
        return std::nullopt;
    }
    m_attributes.insert(path, read);
    return read;
}

QString HistoryWalk::firstResultIn(const QString& group)
{
    if (m_file.objectKind(m_file.fileId(), group) != ObjectKind::Group)
        return {};
    const hid_t id = m_file.openGroup(m_file.fileId(), group);
    const QStringList members = m_file.children(id);
    m_file.closeGroup(id);
    for (const QString& member : members) {
        const QString path = group + QLatin1Char('/') + member;
        if (const auto read = attributes(path); read && read->contains(FD::Operations))
            return path;
    }
    return {};
}

QStringList HistoryWalk::runInputs(const QString& path, const QVariantMap& attributes)
{
    if (attributes.contains(FD::SourceDatapaths))
        return attributes.value(FD::SourceDatapaths).toStringList();
    // A dataset's run group is the nearest group above it that lists the run's inputs.
    for (QString level = parentOf(path); !level.isEmpty(); level = parentOf(level)) {
        const auto above = this->attributes(level);
        if (above && above->contains(FD::SourceDatapaths))
            return above->value(FD::SourceDatapaths).toStringList();
    }
    return {};
}

bool HistoryWalk::declaredStep(const QString& path, const QVariantMap& attributes, QVariantMap& step,
                               QString& error)
{
    const QString name = attributes.value(FD::Operations).toString();
    const OperationDescriptor* descriptor = OperationRegistry::instance().find(name);
    if (!descriptor) {
        error = ZD::operationUnknownMessage().arg(name);
        return false;
    }
    step.insert(FD::Operations, name);
    for (const OperationParameter& declared : descriptor->parameters) {
        if (!attributes.contains(declared.key))
            continue;
        QVariant value;
        if (!declared.normalize(attributes.value(declared.key), value)) {
            error = ZD::parameterInvalidMessage().arg(declared.key) + QStringLiteral(" (%1)").arg(path);
            return false;
        }
        step.insert(declared.key, value);
    }
    return true;
}

bool HistoryWalk::steps(const QString& path, const QString& usedBy, QList<QVariantMap>& steps,
                        QString& origin, QString& error)
{
    if (const auto it = m_steps.constFind(path); it != m_steps.cend()) {
        steps = *it;
        origin = m_origins.value(path);
        return true;
    }
    const std::optional<QVariantMap> read = attributes(path);
    if (!read) {
        error = ZD::historyInputMissingMessage().arg(path, usedBy);
        return false;
    }
    if (!read->contains(FD::Operations)) {
        // Data that no operation wrote starts the chain, unless it lies where only operations write.
        if (path.startsWith(FD::DataProcessed + QLatin1Char('/')) ||
            path.startsWith(FD::DataAnalyzed + QLatin1Char('/'))) {
            error = ZD::historyNotRecordedMessage().arg(path);
            return false;
        }
        steps.clear();
        origin = path;
        return true;
    }
    if (m_walking.contains(path)) {
        error = ZD::historyLoopMessage().arg(path);
        return false;
    }
    QVariantMap step;
    if (!declaredStep(path, *read, step, error))
        return false;
    QStringList inputs;
    for (const QString& input : runInputs(path, *read))
        inputs << cleanPath(input);
    const QString own = cleanPath(read->value(FD::SourceDatapath).toString());
    const QString followed = own.isEmpty() ? inputs.value(0) : own;
    if (followed.isEmpty()) {
        error = ZD::historyNoInputMessage().arg(path);
        return false;
    }

    m_walking.insert(path);
    bool ok = this->steps(followed, path, steps, origin, error);
    for (const QString& other : std::as_const(inputs)) {
        if (!ok || other == followed)
            continue;
        QList<QVariantMap> otherSteps;
        QString otherOrigin;
        ok = this->steps(other, path, otherSteps, otherOrigin, error);
        if (ok && otherSteps != steps) {
            error = ZD::historyBranchesDifferMessage().arg(step.value(FD::Operations).toString(), path,
                                                           followed, other);
            ok = false;
        }
    }
    m_walking.remove(path);
    if (!ok)
        return false;
    steps << step;
    m_steps.insert(path, steps);
    m_origins.insert(path, origin);
    return true;
}

} // namespace

PipelineHistory::Result PipelineHistory::of(const QString& filepath, const QString& resultPath)
{
    Result result;
    LockedFileRead read(filepath);
    if (!read.isOpen()) {
        result.error = read.error();
        return result;
    }
    HistoryWalk walk(read.reader());
    QString path = cleanPath(resultPath);
    const std::optional<QVariantMap> attributes = walk.attributes(path);
    if (!attributes) {
        result.error = ZD::resultMissingMessage().arg(path, filepath);
        return result;
    }
    // A sensor group stands for the result it holds.
    if (!attributes->contains(FD::Operations)) {
        const QString inside = walk.firstResultIn(path);
        if (inside.isEmpty()) {
            result.error = ZD::notAResultMessage().arg(path);
            return result;
        }
        path = inside;
    }
    if (!walk.steps(path, QString(), result.steps, result.origin, result.error))
        result.steps.clear();
    return result;
}

} // namespace zarvi
