#pragma once

#include "app/MainWindowUi.h"
#include "app/PluginTabs.h"

#include <QMainWindow>

#include <functional>

namespace zarvi {

class AbstractPlugin;
class IconFont;
class OperationDialog;

/// The program's one window: opens, creates and closes data and experiment
/// files, each shown by its plug-in in a tab; files dropped on the window open
/// too. Messages for the user go through a replaceable handler so that the
/// opening rules run without dialogs in tests. GUI thread.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// `icons` may be null (text-only buttons); it must outlive the window.
    explicit MainWindow(IconFont* icons, QWidget* parent = nullptr);
    ~MainWindow() override;

    /// Opens a file by the opening rules; a refusal is shown through the message handler.
    FileOpenResult openFile(const QString& path);
    /// Creates an empty data file at `path` (".orvel" added when missing) and opens it.
    FileOpenResult createFile(const QString& path);
    /// Closes the tab and its plug-in.
    void closeTab(int index);

    /// Replaces the message box that shows refusals and failures (rich text).
    void setMessageHandler(std::function<void(const QString&)> handler);
    void showMessage(const QString& text);
    /// Opens an analysis (as its entry of the Analyzers menu does) on the current data
    /// file's chosen signals; null, after a message, when no data file is current.
    OperationDialog* openAnalysis(const QString& name);

    PluginTabs& tabs() { return *m_tabs; }
    const MainWindowUi& ui() const { return m_ui; }

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private slots:
    void onOpenTriggered();
    void onCreateTriggered();
    void onCloseTriggered();
    void onAboutTriggered();
    void onConvertTriggered();
    void onExportTriggered();
    void onCurrentTabChanged(int index);
    void onHideFileToggled(bool hidden);
    void onPluginAdded(zarvi::AbstractPlugin* plugin);
    void onLoadFileRequested(const QString& path);

private:
    QString dialogFolder() const;
    void rememberFolder(const QString& path);

    MainWindowUi m_ui;
    PluginTabs* m_tabs = nullptr;
    std::function<void(const QString&)> m_messageHandler;
};

} // namespace zarvi
