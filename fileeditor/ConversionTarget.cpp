#include "fileeditor/ConversionTarget.h"

#include <QFileInfo>
#include <QRegularExpression>

#include "definitions/FileDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"

namespace zarvi {

namespace {

using FD = FileDefinitions;
using Texts = FileEditorOperationDefinitions;

QString withReason(const QString& message, const QString& reason)
{
    return reason.isEmpty() ? message : message + QStringLiteral("<br>") + reason;
}

} // namespace

bool ConversionTarget::open(const QString& filepath, bool mustBeNew, QString& error)
{
    if (mustBeNew && QFileInfo::exists(filepath)) {
        error = Texts::version5TargetExistsMessage().arg(filepath);
        return false;
    }
    if (!RunTransaction::open(filepath, FileMode::CreateIfMissing)) {
        error = QFileInfo::exists(filepath)
                    ? withReason(Texts::unableToOpenMessage().arg(filepath), lastError())
                    : Texts::unableToCreateMessage().arg(filepath, lastError());
        return false;
    }
    if (createdFile())
        return true;
    const hid_t root = file().fileId();
    if (file().readAttribute(root, FD::SoftwareName).toString().isEmpty())
        error = Texts::notVersion6TargetMessage().arg(filepath);
    else if (file().children(root).contains(FD::ExperimentDesign))
        error = Texts::experimentTargetMessage().arg(filepath);
    if (!error.isEmpty()) {
        rollback();
        return false;
    }
    return true;
}

int ConversionTarget::seriesNumber(const QString& device, const QString& kind, int named)
{
    if (named > 0)
        return named;
    const QString parent = QStringList{FD::DataConverted, device, kind}.join(QLatin1Char('/'));
    int highest = 0;
    if (file().objectKind(file().fileId(), parent) == ObjectKind::Group) {
        static const QRegularExpression numbered(QStringLiteral("^Series(\\d+)$"));
        const hid_t group = file().openGroup(file().fileId(), parent);
        for (const QString& child : file().children(group)) {
            const QRegularExpressionMatch match = numbered.match(child);
            if (match.hasMatch())
                highest = std::max(highest, match.captured(1).toInt());
        }
        file().closeGroup(group);
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

hid_t ConversionTarget::createGroup(const QString& path, QString& error)
{
    return RunTransaction::createGroup(path, Texts::pathExistsMessage(), error);
}

hid_t ConversionTarget::openOrCreateGroup(const QString& path, QString& error)
{
    if (!file().exists(file().fileId(), path))
        return createGroup(path, error);
    const hid_t group = file().openGroup(file().fileId(), path);
    if (group < 0)
        error = withReason(Texts::unableToOpenMessage().arg(path), file().lastError());
    return group;
}

bool ConversionTarget::writeTimes(hid_t group, const QString& name, const std::vector<double>& times,
                                  QString& error)
{
    const hid_t dataset = file().create1D(group, ElementKind::Float64, name, times.size());
    const bool ok = dataset >= 0 && (times.empty() || file().append(dataset, times.data(), {times.size()})) &&
                    file().writeAttribute(dataset, FD::Unit, Texts::SecondsUnit);
    if (!ok)
        error = withReason(FD::unableToCreateDatasetMessage().arg(name), file().lastError());
    file().closeDataset(dataset);
    return ok;
}

bool ConversionTarget::commit(QString& error)
{
    if (RunTransaction::commit(true))
        return true;
    error = Texts::unableToFinishMessage().arg(filepath(), lastError());
    return false;
}

} // namespace zarvi
