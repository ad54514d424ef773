#pragma once

#include "app/FileCheck.h"

#include <QList>
#include <QObject>
#include <QString>

class QTabWidget;

namespace zarvi {

class AbstractPlugin;
class IconFont;

/// What opening a file did.
enum class OpenOutcome
{
    OpenedData,       ///< a new dataset plug-in tab
    OpenedExperiment, ///< a new experiment plug-in tab
    SelectedExisting, ///< the file was already open; its tab is now current
    Refused,          ///< not a data or experiment file; `message` says so
    Busy              ///< an operation is writing the file; try again later
};

struct FileOpenResult
{
    OpenOutcome outcome = OpenOutcome::Refused;
    int tabIndex = -1;
    QString message; ///< the text to show the user, empty when nothing went wrong
};

/// The rules for showing files in the main window's tabs: classify the file (in a
/// child process, see FileCheck), refuse what is neither a data nor an experiment file, reuse the tab of a
/// file already open, otherwise host it in the matching plug-in. Shows no dialog, so that the rules can be
/// checked directly. GUI thread.
class PluginTabs : public QObject
{
    Q_OBJECT

public:
    /// `icons` may be null.
    PluginTabs(QTabWidget* tabs, IconFont* icons, QObject* parent = nullptr);

    FileOpenResult open(const QString& path);
    /// Replaces the check that classifies files before they are opened.
    void setFileCheck(FileCheck check) { m_check = std::move(check); }
    /// Index of the tab showing the same file (same canonical path), -1 when none.
    int indexOf(const QString& path) const;
    AbstractPlugin* plugin(int index) const;
    QList<AbstractPlugin*> plugins() const;
    /// Removes the tab and destroys its plug-in.
    void close(int index);

signals:
    /// A new plug-in is in a tab; the owner connects itself to it.
    void pluginAdded(zarvi::AbstractPlugin* plugin);

private:
    QTabWidget* m_tabs;
    IconFont* m_icons;
    FileCheck m_check;
};

} // namespace zarvi
