#pragma once

#include <QString>

#include <functional>
#include <memory>

class QApplication;

namespace zarvi {

class IconFont;
class InstanceLock;
class MainWindow;
struct StartupOptions;

/// Choices a test makes instead of the defaults.
struct StartupSettings
{
    /// Empty: the system's temporary folder + "/zarvi_Temp".
    QString tempFolder;
    /// Shows the refusal of a second instance and waits until it is read;
    /// empty: a modal message box.
    std::function<void(const QString&)> showAlreadyRunning;
};

/// Starts the program: identity, application font, temporary folder, the
/// single-instance lock, icon font, style sheet, then the maximised main window
/// and the event loop; afterwards it tears down in reverse. The lock is held
/// from the moment it is taken until the loop has ended. Lives on the GUI thread.
class ApplicationStartup
{
public:
    explicit ApplicationStartup(QApplication& application, StartupSettings settings = {});
    ~ApplicationStartup();
    ApplicationStartup(const ApplicationStartup&) = delete;
    ApplicationStartup& operator=(const ApplicationStartup&) = delete;

    static QString defaultTempFolder();
    /// Sets the default colour options of the icon font.
    static void configureIconFont(IconFont& icons);

    /// Everything up to the main window. False when another instance holds the
    /// lock: the refusal was shown and nothing else is left held.
    bool prepare();
    /// Creates the main window without a parent and shows it maximised.
    MainWindow* showMainWindow();
    /// Opens the files the command line names, after writing the demo when asked.
    void openRequestedFiles(const StartupOptions& options);
    /// The whole start, the event loop and the teardown; returns the loop's exit
    /// code, or 1 when another instance is already running.
    int run();
    /// Destroys the main window, releases the lock and the icon font.
    void shutdown();

    MainWindow* mainWindow() const { return m_mainWindow.get(); }
    IconFont* iconFont() const { return m_iconFont.get(); }
    bool holdsLock() const;

private:
    void setIdentity();
    void applyApplicationFont();
    bool prepareTempFolder();
    bool takeLock();
    void createIconFont();
    void applyStyleSheet();

    QApplication& m_application;
    StartupSettings m_settings;
    QString m_tempFolder;
    std::unique_ptr<InstanceLock> m_lock;
    std::unique_ptr<IconFont> m_iconFont;
    std::unique_ptr<MainWindow> m_mainWindow;
};

} // namespace zarvi
