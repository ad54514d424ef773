#include "app/ApplicationStartup.h"

#include "app/AppResources.h"
#include "app/IconFont.h"
#include "app/InstanceLock.h"
#include "app/MainWindow.h"
#include "app/StartupOptions.h"
#include "datafile/DemoRecording.h"
#include "definitions/ZarviMainDefinitions.h"

#include <QApplication>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFontDatabase>
#include <QMessageBox>
#include <QStatusBar>
#include <QTextStream>
#include <QTimer>

namespace zarvi {

using ZMD = ZarviMainDefinitions;

ApplicationStartup::ApplicationStartup(QApplication& application, StartupSettings settings)
    : m_application(application), m_settings(std::move(settings))
{
    AppResources::ensureLoaded();
    if (!m_settings.showAlreadyRunning) {
        m_settings.showAlreadyRunning = [](const QString& text) {
            QMessageBox box(QMessageBox::Warning, ZMD::ApplicationName, text, QMessageBox::Ok);
            box.exec();
        };
    }
}

ApplicationStartup::~ApplicationStartup()
{
    shutdown();
}

QString ApplicationStartup::defaultTempFolder()
{
    return QDir::tempPath() + ZMD::TempFolderSuffix;
}

void ApplicationStartup::configureIconFont(IconFont& icons)
{
    icons.setDefaultOption(ZMD::IconColorKey, ZMD::ColorBlue);
    icons.setDefaultOption(ZMD::IconColorDisabledKey, ZMD::ColorSlate);
    icons.setDefaultOption(ZMD::IconColorSelectedKey, ZMD::ColorLightGrey);
    icons.setDefaultOption(ZMD::IconColorActiveKey, ZMD::ColorLightGrey);
}

bool ApplicationStartup::prepare()
{
    setIdentity();
    applyApplicationFont();
    prepareTempFolder();
    if (!takeLock()) {
        m_settings.showAlreadyRunning(ZMD::alreadyRunningMessage());
        m_lock.reset();
        return false;
    }
    createIconFont();
    applyStyleSheet();
    return true;
}

void ApplicationStartup::setIdentity()
{
    QCoreApplication::setOrganizationName(ZMD::OrganizationName);
    QCoreApplication::setApplicationName(ZMD::ApplicationName);
    QCoreApplication::setApplicationVersion(ZMD::VersionText);
}

void ApplicationStartup::applyApplicationFont()
{
    QFontDatabase::addApplicationFont(ZMD::FontResource);
    const QFont font(ZMD::FontFamily, ZMD::FontPointSize, ZMD::FontWeight, false);
    QApplication::setFont(font);
}

bool ApplicationStartup::prepareTempFolder()
{
    m_tempFolder = m_settings.tempFolder.isEmpty() ? defaultTempFolder() : m_settings.tempFolder;
    return QDir(m_tempFolder).exists() || QDir().mkpath(m_tempFolder);
}

bool ApplicationStartup::takeLock()
{
    m_lock = std::make_unique<InstanceLock>(m_tempFolder);
    return m_lock->tryLock(ZMD::LockTimeoutMs);
}

void ApplicationStartup::createIconFont()
{
    m_iconFont = std::make_unique<IconFont>();
    m_iconFont->load();
    configureIconFont(*m_iconFont);
}

void ApplicationStartup::applyStyleSheet()
{
    QFile file(ZMD::StyleSheetResource);
    if (file.exists() && file.open(QFile::ReadOnly | QFile::Text)) {
        QTextStream stream(&file);
        m_application.setStyleSheet(stream.readAll());
        return;
    }
    QApplication::setStyle(ZMD::FallbackStyle);
    qDebug() << Q_FUNC_INFO << ZMD::StyleSheetMissingDebug;
}

MainWindow* ApplicationStartup::showMainWindow()
{
    m_mainWindow = std::make_unique<MainWindow>(m_iconFont.get());
    m_mainWindow->showMaximized();
    return m_mainWindow.get();
}

void ApplicationStartup::openRequestedFiles(const StartupOptions& options)
{
    if (!m_mainWindow)
        return;
    if (!options.error.isEmpty())
        m_mainWindow->statusBar()->showMessage(options.error);
    if (options.demo) {
        const QString path = m_tempFolder + QLatin1Char('/') + ZMD::DemoFileName;
        m_mainWindow->statusBar()->showMessage(ZMD::writingDemoMessage());
        QApplication::setOverrideCursor(Qt::WaitCursor);
        DemoTruth truth;
        QString error;
        const bool written = DemoRecording::write(path, DemoSettings{}, truth, error);
        QApplication::restoreOverrideCursor();
        m_mainWindow->statusBar()->clearMessage();
        if (written)
            m_mainWindow->openFile(path);
        else
            m_mainWindow->showMessage(ZMD::demoFailedMessage().arg(error));
    }
    for (const QString& file : options.files)
        m_mainWindow->openFile(file);
}

int ApplicationStartup::run()
{
    if (!prepare())
        return 1;
    showMainWindow();
    // The files open once the loop runs, so the window is drawn before a long read.
    const StartupOptions options = StartupOptions::parse(QCoreApplication::arguments());
    QTimer::singleShot(0, m_mainWindow.get(), [this, options] { openRequestedFiles(options); });
    const int exitCode = m_application.exec();
    shutdown();
    return exitCode;
}

void ApplicationStartup::shutdown()
{
    m_mainWindow.reset();
    if (m_lock)
        m_lock->unlock();
    m_lock.reset();
    m_iconFont.reset();
}

bool ApplicationStartup::holdsLock() const
{
    return m_lock && m_lock->isLocked();
}

} // namespace zarvi
