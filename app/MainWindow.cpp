#include "app/MainWindow.h"

#include "analysis/AnalysisPipeline.h"
#include "app/NewDataFile.h"
#include "app/browser/DataFileTreeWidget.h"
#include "app/plugins/AbstractPlugin.h"
#include "app/plugins/DatasetPlugin.h"
#include "definitions/DatasetDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "fileeditor/ConvertDialog.h"
#include "fileeditor/ExportDialog.h"
#include "framework/OperationDialog.h"
#include "framework/OperationRegistry.h"

#include <QAction>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolButton>
#include <QWhatsThis>

namespace zarvi {

namespace {
const QString lastFolderKey = QStringLiteral("MainWindow/LastFolder");
constexpr int statusTimeoutMs = 8000;
} // namespace

MainWindow::MainWindow(IconFont* icons, QWidget* parent) : QMainWindow(parent)
{
    m_ui.setupUi(this, icons);
    setAcceptDrops(true);
    m_tabs = new PluginTabs(m_ui.tw_files, icons, this);
    m_messageHandler = [this](const QString& text) {
        QMessageBox box(QMessageBox::Warning, ZarviMainDefinitions::ApplicationName, text, QMessageBox::Ok,
                        this);
        box.setTextFormat(Qt::RichText);
        box.exec();
    };

    connect(m_tabs, &PluginTabs::pluginAdded, this, &MainWindow::onPluginAdded);
    connect(m_ui.actionOpen, &QAction::triggered, this, &MainWindow::onOpenTriggered);
    connect(m_ui.actionCreate, &QAction::triggered, this, &MainWindow::onCreateTriggered);
    connect(m_ui.actionClose, &QAction::triggered, this, &MainWindow::onCloseTriggered);
    connect(m_ui.actionAbout, &QAction::triggered, this, &MainWindow::onAboutTriggered);
    connect(m_ui.actionConvert, &QAction::triggered, this, &MainWindow::onConvertTriggered);
    connect(m_ui.actionExport, &QAction::triggered, this, &MainWindow::onExportTriggered);
    // Each analysis opens on the signals chosen in the current file's tab.
    for (const QString& name : OperationRegistry::instance().names(OperationFamily::Analysis)) {
        QAction* action = m_ui.menuAnalyzers->addAction(name);
        action->setToolTip(OperationRegistry::instance().find(name)->description);
        connect(action, &QAction::triggered, this, [this, name] { openAnalysis(name); });
    }
    connect(m_ui.actionWhatsThis, &QAction::triggered, this, [] { QWhatsThis::enterWhatsThisMode(); });
    connect(m_ui.tb_hideFile, &QToolButton::toggled, this, &MainWindow::onHideFileToggled);
    connect(m_ui.tw_files, &QTabWidget::tabCloseRequested, this, &MainWindow::closeTab);
    connect(m_ui.tw_files, &QTabWidget::currentChanged, this, &MainWindow::onCurrentTabChanged);
    onCurrentTabChanged(-1);
}

MainWindow::~MainWindow() = default;

FileOpenResult MainWindow::openFile(const QString& path)
{
    const FileOpenResult result = m_tabs->open(path);
    if (result.outcome == OpenOutcome::Refused)
        showMessage(result.message);
    else if (result.outcome == OpenOutcome::Busy)
        statusBar()->showMessage(result.message, statusTimeoutMs);
    return result;
}

FileOpenResult MainWindow::createFile(const QString& path)
{
    const QString target = NewDataFile::withExtension(path);
    FileOpenResult result;
    if (m_tabs->indexOf(target) >= 0) {
        // Replacing a file that a tab shows would pull the data from under it.
        result.message = ZarviMainDefinitions::fileOpenInTabMessage().arg(target);
        showMessage(result.message);
        return result;
    }
    QString error;
    if (!NewDataFile::create(target, error)) {
        result.message = error;
        showMessage(error);
        return result;
    }
    return openFile(target);
}

void MainWindow::closeTab(int index)
{
    m_tabs->close(index);
}

void MainWindow::setMessageHandler(std::function<void(const QString&)> handler)
{
    m_messageHandler = std::move(handler);
}

void MainWindow::showMessage(const QString& text)
{
    if (m_messageHandler)
        m_messageHandler(text);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    const QMimeData* mime = event->mimeData();
    if (mime->hasUrls()) {
        for (const QUrl& url : mime->urls()) {
            if (url.isLocalFile()) {
                event->acceptProposedAction();
                return;
            }
        }
    }
    event->ignore();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    event->acceptProposedAction();
    for (const QUrl& url : urls)
        if (url.isLocalFile())
            openFile(url.toLocalFile());
}

void MainWindow::onOpenTriggered()
{
    const QStringList paths = QFileDialog::getOpenFileNames(this, m_ui.actionOpen->text(), dialogFolder(),
                                                            FileDefinitions::FileFilter);
    for (const QString& path : paths) {
        rememberFolder(path);
        openFile(path);
    }
}

void MainWindow::onCreateTriggered()
{
    const QString path = QFileDialog::getSaveFileName(this, m_ui.actionCreate->text(), dialogFolder(),
                                                      FileDefinitions::FileFilter);
    if (path.isEmpty())
        return;
    rememberFolder(path);
    createFile(path);
}

void MainWindow::onCloseTriggered()
{
    const int index = m_ui.tw_files->currentIndex();
    if (index >= 0)
        closeTab(index);
}

void MainWindow::onAboutTriggered()
{
    QMessageBox::about(this, m_ui.actionAbout->text(),
                       QStringLiteral("<b>%1</b> %2<br>%3")
                           .arg(ZarviMainDefinitions::ApplicationName, ZarviMainDefinitions::VersionText,
                                ZarviMainDefinitions::OrganizationName));
}

void MainWindow::onConvertTriggered()
{
    const AbstractPlugin* current = m_tabs->plugin(m_ui.tw_files->currentIndex());
    const bool dataFile = qobject_cast<const DatasetPlugin*>(current) != nullptr;
    const QString written = ConvertDialog::run(this, dataFile ? current->filePath() : QString());
    if (!written.isEmpty())
        onLoadFileRequested(written);
}

void MainWindow::onExportTriggered()
{
    const auto* plugin = qobject_cast<const DatasetPlugin*>(m_tabs->plugin(m_ui.tw_files->currentIndex()));
    if (!plugin) {
        showMessage(ZarviMainDefinitions::exportNeedsDataFileMessage());
        return;
    }
    ExportDialog::run(this, plugin->filePath(), plugin->fileTree()->selectedPaths());
}

OperationDialog* MainWindow::openAnalysis(const QString& name)
{
    auto* plugin = qobject_cast<DatasetPlugin*>(m_tabs->plugin(m_ui.tw_files->currentIndex()));
    if (!plugin) {
        showMessage(DatasetDefinitions::analysisNeedsDataFileMessage());
        return nullptr;
    }
    return plugin->analysis()->openOperation(name);
}

void MainWindow::onCurrentTabChanged(int index)
{
    const AbstractPlugin* plugin = m_tabs->plugin(index);
    m_ui.lb_mode->setText(plugin ? plugin->modeName() : QString());
    m_ui.actionClose->setEnabled(plugin != nullptr);
}

void MainWindow::onHideFileToggled(bool hidden)
{
    for (AbstractPlugin* plugin : m_tabs->plugins())
        plugin->setFileManagerVisible(!hidden);
}

void MainWindow::onPluginAdded(AbstractPlugin* plugin)
{
    plugin->setFileManagerVisible(!m_ui.tb_hideFile->isChecked());
    connect(plugin, &AbstractPlugin::sendLoadFileRequest, this, &MainWindow::onLoadFileRequested);
    connect(plugin, &AbstractPlugin::sendStatusMessage, this,
            [this](const QString& text) { statusBar()->showMessage(text, statusTimeoutMs); });
}

void MainWindow::onLoadFileRequested(const QString& path)
{
    // A plug-in asking for a file that is already open wants it read again.
    const FileOpenResult result = openFile(path);
    if (result.outcome == OpenOutcome::SelectedExisting)
        if (AbstractPlugin* plugin = m_tabs->plugin(result.tabIndex))
            plugin->reloadFile();
}

QString MainWindow::dialogFolder() const
{
    return QSettings().value(lastFolderKey).toString();
}

void MainWindow::rememberFolder(const QString& path)
{
    QSettings().setValue(lastFolderKey, QFileInfo(path).absolutePath());
}

} // namespace zarvi
