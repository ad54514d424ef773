#include "app/plugins/DataFileEditing.h"

#include "definitions/DatasetDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "fileeditor/FileCompaction.h"
#include "framework/DatasetRenaming.h"
#include "framework/FileAccessLock.h"

#include <QFileInfo>
#include <QInputDialog>
#include <QLocale>
#include <QMessageBox>
#include <QtDebug>

namespace zarvi {

namespace {

using DD = DatasetDefinitions;

QString sizeText(qint64 bytes)
{
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

} // namespace

DataFileEditing::DataFileEditing(QWidget* dialogParent, std::function<void(const QString&)> message)
    : QObject(dialogParent), m_dialogParent(dialogParent), m_message(std::move(message))
{
    m_askName = [this](const QString& label, const QString& current) -> std::optional<QString> {
        bool ok = false;
        const QString name =
            QInputDialog::getText(m_dialogParent, DD::renameTitle(), label, QLineEdit::Normal, current, &ok);
        return ok ? std::optional<QString>(name) : std::nullopt;
    };
}

QString DataFileEditing::rename(const QString& filepath, const QString& path)
{
    if (!DatasetRenaming::isRenamable(path))
        return {};
    const QString current = path.section(QLatin1Char('/'), -1);
    const std::optional<QString> name = m_askName(DD::renameLabel().arg(path), current);
    if (!name || *name == current)
        return {};
    const DatasetRenaming::Result result = DatasetRenaming::rename(filepath, path, *name);
    if (result.busy) {
        emit sendStatusMessage(result.error);
        return {};
    }
    if (!result.error.isEmpty()) {
        m_message(result.error);
        return {};
    }
    emit sendStatusMessage(DD::renamedMessage().arg(path, result.newPath));
    return result.newPath;
}

bool DataFileEditing::compact(const QString& filepath)
{
    // The worker waits for the lock; the GUI says at once that a run holds the file.
    if (!FileAccessLock::tryLock(filepath).owns_lock()) {
        emit sendStatusMessage(DD::fileBusyMessage());
        return false;
    }
    FileCompaction::Result result;
    BackgroundJob job(ZarviMainDefinitions::progressTitle());
    job.exec(DD::compactLabel().arg(QFileInfo(filepath).fileName()),
             [&](Feedback& feedback) { result = FileCompaction::compact(filepath, &feedback); });
    if (result.canceled)
        return false;
    if (!result.ok) {
        qWarning().noquote() << "Compacting" << filepath << "failed:" << result.reason;
        m_present(FileDefinitions::repackFailedTitle(), result.error, QMessageBox::Critical);
        return false;
    }
    emit sendStatusMessage(
        DD::compactedMessage().arg(sizeText(result.sizeBefore), sizeText(result.sizeAfter)));
    return true;
}

} // namespace zarvi
