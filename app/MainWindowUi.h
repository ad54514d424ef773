#pragma once

class QAction;
class QFrame;
class QLabel;
class QMainWindow;
class QMenu;
class QTabWidget;
class QToolButton;

namespace zarvi {

class IconFont;

/// The main window's form: its actions, menus, tool frames, mode label and the
/// central tab widget, built in code with the object names that style sheets
/// and help texts address. Holds no behaviour; MainWindow connects it.
/// Every widget is owned by the window passed to setupUi(). GUI thread.
class MainWindowUi
{
public:
    /// Builds the form into `window`; `icons` may be null (text-only buttons).
    void setupUi(QMainWindow* window, const IconFont* icons);

    // Files.
    QAction* actionOpen = nullptr;
    QAction* actionCreate = nullptr;
    QAction* actionClose = nullptr;
    // File editing.
    QAction* actionConvert = nullptr;
    QAction* actionMerge = nullptr;
    QAction* actionSplit = nullptr;
    QAction* actionExport = nullptr;
    // Help.
    QAction* actionLicense = nullptr;
    QAction* actionAbout = nullptr;
    QAction* actionWhatsThis = nullptr;
    QAction* actionTutorials = nullptr;
    QAction* actionWebinar = nullptr;

    QMenu* menuFile = nullptr;
    QMenu* menuEdit = nullptr;
    QMenu* menuAnalyzers = nullptr;
    QMenu* menuHelp = nullptr;

    QFrame* frame_file = nullptr;
    QToolButton* tb_open = nullptr;
    QToolButton* tb_create = nullptr;
    QToolButton* tb_hideFile = nullptr;
    QFrame* frame_edit = nullptr;
    QToolButton* tb_convert = nullptr;
    QToolButton* tb_merge = nullptr;
    QToolButton* tb_split = nullptr;
    QToolButton* tb_export = nullptr;
    QLabel* lb_mode = nullptr;
    /// One plug-in per open file.
    QTabWidget* tw_files = nullptr;
};

} // namespace zarvi
