#pragma once

#include "framework/BackgroundJob.h"

#include <QObject>
#include <QString>

#include <functional>
#include <optional>

class QWidget;

namespace zarvi {

/// The file browser's edits besides deletion: giving a result a new name (asked with
/// an input dialog and checked before anything is written) and compacting the file,
/// which runs on a worker thread with a progress dialog while the GUI waits in a local
/// event loop. Outcomes go to the status bar; refusals and failures to message boxes.
/// GUI thread.
class DataFileEditing : public QObject
{
    Q_OBJECT

public:
    /// Asks for a name (label, current name); nothing when the user cancels.
    using NameAsker = std::function<std::optional<QString>(const QString& label, const QString& current)>;

    /// `dialogParent` parents the dialogs; `message` shows a refusal (rich text).
    DataFileEditing(QWidget* dialogParent, std::function<void(const QString&)> message);

    /// Asks the new name of the result at `path` and renames it; its new path, or empty
    /// when nothing was renamed (cancelled, refused, busy, failed).
    QString rename(const QString& filepath, const QString& path);
    /// Rewrites the file without the space of deleted data. True when it was compacted.
    bool compact(const QString& filepath);

    /// Replace the input dialog and the message box of a failed compaction (tests).
    void setNameAsker(NameAsker asker) { m_askName = std::move(asker); }
    void setMessagePresenter(MessagePresenter presenter) { m_present = std::move(presenter); }

signals:
    void sendStatusMessage(const QString& message);

private:
    QWidget* m_dialogParent;
    std::function<void(const QString&)> m_message;
    NameAsker m_askName;
    MessagePresenter m_present = BackgroundJob::showMessage;
};

} // namespace zarvi
