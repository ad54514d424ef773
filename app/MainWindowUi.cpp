#include "app/MainWindowUi.h"

#include "app/IconFont.h"
#include "definitions/ZarviMainDefinitions.h"

#include <QAction>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace zarvi {

namespace {

QAction* makeAction(QMainWindow* window, const char* objectName, const QString& text, const QString& tip,
                    const IconFont* icons, IconFont::Glyph glyph)
{
    auto* action = new QAction(text, window);
    action->setObjectName(QString::fromLatin1(objectName));
    action->setToolTip(tip);
    action->setStatusTip(tip);
    action->setWhatsThis(tip);
    if (icons)
        action->setIcon(icons->icon(glyph));
    return action;
}

// A file-editing or help entry whose feature is not part of this version yet.
void markUnavailable(QAction* action)
{
    action->setEnabled(false);
    action->setStatusTip(action->toolTip() + QLatin1Char(' ') +
                         ZarviMainDefinitions::notAvailableStatusTip());
}

QToolButton* makeButton(QWidget* parent, const char* objectName, QAction* action)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(QString::fromLatin1(objectName));
    button->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    button->setIconSize(QSize(24, 24));
    button->setAutoRaise(true);
    if (action)
        button->setDefaultAction(action);
    return button;
}

QFrame* makeFrame(QWidget* parent, const char* objectName)
{
    auto* frame = new QFrame(parent);
    frame->setObjectName(QString::fromLatin1(objectName));
    frame->setFrameShape(QFrame::StyledPanel);
    auto* layout = new QHBoxLayout(frame);
    layout->setContentsMargins(4, 2, 4, 2);
    layout->setSpacing(2);
    return frame;
}

} // namespace

void MainWindowUi::setupUi(QMainWindow* window, const IconFont* icons)
{
    window->setObjectName(QStringLiteral("MainWindow"));
    window->setWindowTitle(ZarviMainDefinitions::ApplicationName);
    window->resize(1280, 800);

    actionOpen = makeAction(window, "actionOpen", QObject::tr("Open"),
                            QObject::tr("Open a data or experiment file"), icons, IconFont::FolderOpen);
    actionOpen->setShortcut(QKeySequence::Open);
    actionCreate = makeAction(window, "actionCreate", QObject::tr("Create"),
                              QObject::tr("Create a new, empty data file"), icons, IconFont::Plus);
    actionCreate->setShortcut(QKeySequence::New);
    actionClose = makeAction(window, "actionClose", QObject::tr("Close"),
                             QObject::tr("Close the current file"), icons, IconFont::Close);
    actionClose->setShortcut(QKeySequence::Close);

    actionConvert = makeAction(window, "actionConvert", QObject::tr("Convert"),
                               QObject::tr("Convert recordings of other formats into a data file"), icons,
                               IconFont::Exchange);
    actionMerge = makeAction(window, "actionMerge", QObject::tr("Merge"),
                             QObject::tr("Merge data files into one"), icons, IconFont::Compress);
    actionSplit = makeAction(window, "actionSplit", QObject::tr("Split"),
                             QObject::tr("Split a data file into several"), icons, IconFont::Scissors);
    actionExport = makeAction(window, "actionExport", QObject::tr("Export"),
                              QObject::tr("Export datasets to .csv or .xlsx"), icons, IconFont::Upload);

    actionLicense = makeAction(window, "actionLicense", QObject::tr("License"),
                               QObject::tr("Activate or view the licence"), icons, IconFont::Key);
    actionAbout = makeAction(window, "actionAbout", QObject::tr("About"),
                             QObject::tr("About %1").arg(ZarviMainDefinitions::ApplicationName), icons,
                             IconFont::InfoCircle);
    actionWhatsThis =
        makeAction(window, "actionWhatsThis", QObject::tr("What's This?"),
                   QObject::tr("Click on a control to learn what it does"), icons, IconFont::QuestionCircle);
    actionWhatsThis->setShortcut(QKeySequence::WhatsThis);
    actionTutorials = makeAction(window, "actionTutorials", QObject::tr("Tutorials"),
                                 QObject::tr("Step-by-step tutorials"), icons, IconFont::Book);
    actionWebinar = makeAction(window, "actionWebinar", QObject::tr("Webinar"),
                               QObject::tr("Recorded webinars"), icons, IconFont::YoutubePlay);
    for (QAction* action : {actionMerge, actionSplit, actionLicense, actionTutorials, actionWebinar})
        markUnavailable(action);

    auto* menuBar = new QMenuBar(window);
    menuBar->setObjectName(QStringLiteral("menuBar"));
    menuFile = menuBar->addMenu(QObject::tr("File"));
    menuFile->setObjectName(QStringLiteral("menuFile"));
    menuFile->addActions({actionOpen, actionCreate, actionClose});
    menuEdit = menuBar->addMenu(QObject::tr("Edit"));
    menuEdit->setObjectName(QStringLiteral("menuEdit"));
    menuEdit->addActions({actionConvert, actionMerge, actionSplit, actionExport});
    menuAnalyzers = menuBar->addMenu(QObject::tr("Analyzers"));
    menuAnalyzers->setObjectName(QStringLiteral("menuAnalyzers"));
    menuHelp = menuBar->addMenu(QObject::tr("Help"));
    menuHelp->setObjectName(QStringLiteral("menuHelp"));
    menuHelp->addActions({actionWhatsThis, actionTutorials, actionWebinar});
    menuHelp->addSeparator();
    menuHelp->addActions({actionLicense, actionAbout});
    window->setMenuBar(menuBar);

    auto* statusBar = new QStatusBar(window);
    statusBar->setObjectName(QStringLiteral("statusBar"));
    window->setStatusBar(statusBar);

    auto* central = new QWidget(window);
    central->setObjectName(QStringLiteral("centralWidget"));
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(4, 4, 4, 4);
    auto* toolRow = new QHBoxLayout;
    layout->addLayout(toolRow);

    frame_file = makeFrame(central, "frame_file");
    tb_open = makeButton(frame_file, "tb_open", actionOpen);
    tb_create = makeButton(frame_file, "tb_create", actionCreate);
    tb_hideFile = makeButton(frame_file, "tb_hideFile", nullptr);
    tb_hideFile->setText(QObject::tr("Hide files"));
    tb_hideFile->setToolTip(QObject::tr("Hide or show the file tree of the open files"));
    tb_hideFile->setStatusTip(tb_hideFile->toolTip());
    tb_hideFile->setCheckable(true);
    if (icons)
        tb_hideFile->setIcon(icons->icon(IconFont::EyeSlash));
    for (QToolButton* button : {tb_open, tb_create, tb_hideFile})
        frame_file->layout()->addWidget(button);
    toolRow->addWidget(frame_file);

    frame_edit = makeFrame(central, "frame_edit");
    tb_convert = makeButton(frame_edit, "tb_convert", actionConvert);
    tb_merge = makeButton(frame_edit, "tb_merge", actionMerge);
    tb_split = makeButton(frame_edit, "tb_split", actionSplit);
    tb_export = makeButton(frame_edit, "tb_export", actionExport);
    for (QToolButton* button : {tb_convert, tb_merge, tb_split, tb_export})
        frame_edit->layout()->addWidget(button);
    toolRow->addWidget(frame_edit);
    toolRow->addStretch(1);

    lb_mode = new QLabel(central);
    lb_mode->setObjectName(QStringLiteral("lb_mode"));
    QFont modeFont = lb_mode->font();
    modeFont.setBold(true);
    modeFont.setPointSize(modeFont.pointSize() + 4);
    lb_mode->setFont(modeFont);
    toolRow->addWidget(lb_mode);

    tw_files = new QTabWidget(central);
    tw_files->setObjectName(QStringLiteral("tw_files"));
    tw_files->setTabsClosable(true);
    tw_files->setMovable(true);
    tw_files->setDocumentMode(true);
    layout->addWidget(tw_files, 1);
    window->setCentralWidget(central);
}

} // namespace zarvi
