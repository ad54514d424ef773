#pragma once

#include "app/plugins/AbstractPlugin.h"

#include <functional>

class QSplitter;
class QTabWidget;
class QToolButton;

namespace zarvi {

class AnalysisPipeline;
class AttributesTable;
class BehaviorView;
class DataFileEditing;
class DataFileTreeWidget;
class DatasetPipeline;
class PipelineSaving;
struct DisplayData;

/// Shows a data file: on the left the file manager (the file tree with the
/// attributes of the selection, display and delete buttons, and the tree's menu
/// that also renames a result, saves the pipeline that produced it and compacts the
/// file), on the right the
/// view area with the processing pipeline, the analysis and the behaviour pages
/// and one tab per displayed selection (signal plots, image stacks). The
/// pipeline and the analysis pages are its own; after every run they report
/// to, the plug-in re-reads the file. GUI thread.
class DatasetPlugin : public AbstractPlugin
{
    Q_OBJECT

public:
    DatasetPlugin(const QString& applicationName, const QString& version, IconFont* icons,
                  QWidget* parent = nullptr);

    QIcon icon() const override;
    QString modeName() const override;
    void setFileManagerVisible(bool visible) override;

    /// The place of the processing pipeline: its page in the view area, which
    /// `tb_pipeline` shows. The plug-in takes ownership of the widget.
    void setPipelineWidget(QWidget* pipeline);
    /// The analysis page (`tb_analysis`); the plug-in takes ownership.
    void setAnalysisWidget(QWidget* analysis);
    /// The behaviour page (`tb_behavior`); the plug-in takes ownership.
    void setBehaviorWidget(QWidget* behavior);

    /// Shows the datasets at these paths: 1-D signals together in one plot, with
    /// the event arrays recorded with them drawn over it, the other event arrays
    /// together as a raster, each image stack in a browser of its own (a sensor group
    /// stands for the signal or stack it holds), each perievent result in a result view
    /// (its group stands for it, or for both of its sides). Returns how many tabs were
    /// added.
    int displayPaths(const QStringList& paths);
    /// Asks for confirmation, then removes the groups and datasets and re-reads
    /// the file, and then offers to compact it. False when refused, busy or when a
    /// removal failed.
    bool deletePaths(const QStringList& paths);
    /// Asks a new name for the result at `path`, renames it and selects it; its new path,
    /// or empty when nothing was renamed.
    QString renamePath(const QString& path);
    /// Compacts the file (with a progress dialog) and re-reads it. True when compacted.
    bool compactFile();

    /// Replace the confirmation box and the message box (rich text) used by deletion.
    void setConfirmHandler(std::function<bool(const QString&)> confirm);
    void setMessageHandler(std::function<void(const QString&)> message);

    DataFileTreeWidget* fileTree() const { return m_tree; }
    DataFileEditing* editing() const { return m_editing; }
    PipelineSaving* pipelineSaving() const { return m_pipelineSaving; }
    DatasetPipeline* pipeline() const { return m_pipeline; }
    AnalysisPipeline* analysis() const { return m_analysis; }
    BehaviorView* behavior() const { return m_behavior; }
    AttributesTable* attributesTable() const { return m_attributes; }
    QTabWidget* viewTabs() const { return tw_view; }

public slots:
    bool reloadFile() override;

private slots:
    void onDisplayClicked();
    void onDeleteClicked();
    void onSelectionChanged();
    void onViewTabChanged(int index);
    void onViewTabCloseRequested(int index);

private:
    void buildFileManager(QSplitter* splitter);
    void buildViewArea(QSplitter* splitter);
    void buildPipelines();
    void showPage(QWidget* page);
    /// Reads signals and event arrays for a display; every failure goes to the
    /// status bar. False when the file is busy or cannot be opened.
    bool readDisplayData(const QStringList& signalPaths, const QStringList& eventPaths, DisplayData& data);
    int showSignals(const QStringList& paths, const QStringList& eventPaths);
    int showEvents(const QStringList& paths);
    int showImageStack(const QString& path);
    /// The saved perievent matrices that `path` names (itself, or in its group).
    QStringList perieventResults(const QString& path) const;
    int showPerievents(const QString& path);
    int addDisplayTab(QWidget* display, const QString& title, const QStringList& paths);
    /// Closes the displays of data at or under these paths, which the file no longer has.
    void closeDisplaysUnder(const QStringList& paths);

    QWidget* w_fileManager = nullptr;
    QToolButton* tb_display = nullptr;
    QToolButton* tb_delete = nullptr;
    DataFileTreeWidget* m_tree = nullptr;
    DataFileEditing* m_editing = nullptr;
    PipelineSaving* m_pipelineSaving = nullptr;
    AttributesTable* m_attributes = nullptr;
    DatasetPipeline* m_pipeline = nullptr;
    AnalysisPipeline* m_analysis = nullptr;
    BehaviorView* m_behavior = nullptr;
    QWidget* w_view = nullptr;
    QToolButton* tb_pipeline = nullptr;
    QToolButton* tb_analysis = nullptr;
    QToolButton* tb_behavior = nullptr;
    QTabWidget* tw_view = nullptr;
    QWidget* w_pipeline = nullptr;
    QWidget* w_analysis = nullptr;
    QWidget* w_behavior = nullptr;
    QWidget* m_lastPage = nullptr;
    std::function<bool(const QString&)> m_confirm;
    std::function<void(const QString&)> m_message;
};

} // namespace zarvi
