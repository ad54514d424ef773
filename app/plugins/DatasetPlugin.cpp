#include "app/plugins/DatasetPlugin.h"

#include "analysis/AnalysisPipeline.h"
#include "analysis/PerieventResultView.h"
#include "app/IconFont.h"
#include "app/behavior/BehaviorPipeline.h"
#include "app/behavior/BehaviorView.h"
#include "app/browser/AttributesTable.h"
#include "app/browser/DataFileTreeWidget.h"
#include "app/browser/DisplayDataReader.h"
#include "app/browser/EventDisplayWidget.h"
#include "app/browser/ImageStackWidget.h"
#include "app/browser/SignalPlotWidget.h"
#include "app/plugins/DataFileEditing.h"
#include "app/plugins/DatasetPipeline.h"
#include "app/plugins/DisplayedPaths.h"
#include "app/plugins/PipelineSaving.h"
#include "app/plugins/PluginWidgets.h"
#include "datafile/SignalDataset.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/DatasetDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/DatasetDeletion.h"
#include "framework/DatasetSelector.h"
#include "framework/RunSummary.h"

#include <QHBoxLayout>
#include <QMessageBox>
#include <QSplitter>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace zarvi {

namespace {

using DD = DatasetDefinitions;
using FD = FileDefinitions;

// The first tabs of the view area are the pipeline, analysis and behaviour pages.
constexpr int PageCount = 3;

} // namespace

DatasetPlugin::DatasetPlugin(const QString& applicationName, const QString& version, IconFont* icons,
                             QWidget* parent)
    : AbstractPlugin(applicationName, version, icons, parent)
{
    setObjectName(QStringLiteral("DatasetPlugin"));
    m_confirm = [this](const QString& question) {
        return QMessageBox::question(this, ZarviMainDefinitions::ApplicationName, question) ==
               QMessageBox::Yes;
    };
    m_message = [this](const QString& text) {
        QMessageBox box(QMessageBox::Warning, ZarviMainDefinitions::ApplicationName, text, QMessageBox::Ok,
                        this);
        box.setTextFormat(Qt::RichText);
        box.exec();
    };
    m_editing = new DataFileEditing(this, [this](const QString& text) { m_message(text); });
    connect(m_editing, &DataFileEditing::sendStatusMessage, this, &DatasetPlugin::sendStatusMessage);
    m_pipelineSaving = new PipelineSaving(this, [this](const QString& text) { m_message(text); });
    connect(m_pipelineSaving, &PipelineSaving::sendStatusMessage, this, &DatasetPlugin::sendStatusMessage);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("splitter"));
    layout->addWidget(splitter);
    buildFileManager(splitter);
    buildViewArea(splitter);
    buildPipelines();
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 3);
    splitter->setSizes({360, 1000});
    onSelectionChanged();
}

void DatasetPlugin::buildFileManager(QSplitter* splitter)
{
    w_fileManager = new QWidget(splitter);
    w_fileManager->setObjectName(QStringLiteral("w_fileManager"));
    auto* layout = new QVBoxLayout(w_fileManager);
    layout->setContentsMargins(2, 2, 2, 2);
    auto* buttons = new QHBoxLayout;
    tb_display = PluginWidgets::toolButton(w_fileManager, "tb_display", DD::displayAction(),
                                           tr("Show the selected signals, event arrays and image stacks"),
                                           icons(), IconFont::Eye);
    tb_delete = PluginWidgets::toolButton(w_fileManager, "tb_delete", DD::deleteAction(),
                                          tr("Delete the selected groups and datasets from the file"),
                                          icons(), IconFont::Trash);
    buttons->addWidget(tb_display);
    buttons->addWidget(tb_delete);
    buttons->addStretch(1);
    layout->addLayout(buttons);

    auto* fileSplitter = new QSplitter(Qt::Vertical, w_fileManager);
    fileSplitter->setObjectName(QStringLiteral("splitter_file"));
    m_tree = new DataFileTreeWidget(icons(), fileSplitter);
    m_tree->setObjectName(QStringLiteral("tw_fileTree"));
    m_attributes = new AttributesTable(fileSplitter);
    m_attributes->setObjectName(QStringLiteral("tw_attributes"));
    fileSplitter->setStretchFactor(0, 3);
    fileSplitter->setStretchFactor(1, 1);
    layout->addWidget(fileSplitter, 1);

    connect(tb_display, &QToolButton::clicked, this, &DatasetPlugin::onDisplayClicked);
    connect(tb_delete, &QToolButton::clicked, this, &DatasetPlugin::onDeleteClicked);
    connect(m_tree, &DataFileTreeWidget::displayRequested, this, &DatasetPlugin::onDisplayClicked);
    connect(m_tree, &DataFileTreeWidget::deleteRequested, this, &DatasetPlugin::onDeleteClicked);
    connect(m_tree, &DataFileTreeWidget::renameRequested, this, &DatasetPlugin::renamePath);
    connect(m_tree, &DataFileTreeWidget::compactRequested, this, &DatasetPlugin::compactFile);
    connect(m_tree, &DataFileTreeWidget::savePipelineRequested, this,
            [this](const QString& path) { m_pipelineSaving->save(filePath(), path); });
    connect(m_tree, &QTreeWidget::itemSelectionChanged, this, &DatasetPlugin::onSelectionChanged);
    connect(m_tree, &DataFileTreeWidget::currentPathChanged, this,
            [this](const QString& path) { m_attributes->showHistory(*m_tree, path); });
    connect(m_tree, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item) {
        const DataFileNode* node = m_tree->node(item->data(0, Qt::UserRole).toString());
        // A double click on a plain group only opens it; on data it also shows it.
        if (node && displayPaths({node->path}) == 0 && node->kind == ObjectKind::Dataset)
            emit sendStatusMessage(DD::nothingToDisplayMessage().arg(node->path));
    });
}

void DatasetPlugin::buildViewArea(QSplitter* splitter)
{
    w_view = new QWidget(splitter);
    w_view->setObjectName(QStringLiteral("w_view"));
    auto* layout = new QVBoxLayout(w_view);
    layout->setContentsMargins(2, 2, 2, 2);
    auto* buttons = new QHBoxLayout;
    tb_pipeline = PluginWidgets::toolButton(w_view, "tb_pipeline", DD::pipelineTitle(),
                                            tr("Process the selected data"), icons(), IconFont::Sitemap);
    tb_analysis = PluginWidgets::toolButton(w_view, "tb_analysis", DD::analysisTitle(),
                                            tr("Analyse the processed data"), icons(), IconFont::BarChart);
    tb_behavior =
        PluginWidgets::toolButton(w_view, "tb_behavior", DD::behaviorTitle(),
                                  tr("Behaviour video, tracking and measures"), icons(), IconFont::Paw);
    for (QToolButton* button : {tb_pipeline, tb_analysis, tb_behavior}) {
        button->setCheckable(true);
        buttons->addWidget(button);
    }
    buttons->addStretch(1);
    layout->addLayout(buttons);

    tw_view = new QTabWidget(w_view);
    tw_view->setObjectName(QStringLiteral("tw_view"));
    tw_view->setTabsClosable(true);
    tw_view->setDocumentMode(true);
    w_pipeline = PluginWidgets::page(tw_view, "w_pipeline", DD::pipelinePlaceholder());
    w_analysis = PluginWidgets::page(tw_view, "w_analysis", DD::analysisPlaceholder());
    w_behavior = PluginWidgets::page(tw_view, "w_behavior", DD::behaviorPlaceholder());
    tw_view->addTab(w_pipeline, tb_pipeline->icon(), DD::pipelineTitle());
    tw_view->addTab(w_analysis, tb_analysis->icon(), DD::analysisTitle());
    tw_view->addTab(w_behavior, tb_behavior->icon(), DD::behaviorTitle());
    // The pages are reached by the tool buttons above; the tab bar lists the displays.
    for (int i = 0; i < PageCount; ++i)
        tw_view->setTabVisible(i, false);
    m_lastPage = w_pipeline;
    tw_view->setCurrentWidget(w_pipeline);
    layout->addWidget(tw_view, 1);

    connect(tb_pipeline, &QToolButton::clicked, this, [this] { showPage(w_pipeline); });
    connect(tb_analysis, &QToolButton::clicked, this, [this] { showPage(w_analysis); });
    connect(tb_behavior, &QToolButton::clicked, this, [this] { showPage(w_behavior); });
    connect(tw_view, &QTabWidget::currentChanged, this, &DatasetPlugin::onViewTabChanged);
    connect(tw_view, &QTabWidget::tabCloseRequested, this, &DatasetPlugin::onViewTabCloseRequested);
    onViewTabChanged(tw_view->currentIndex());
}

void DatasetPlugin::showPage(QWidget* page)
{
    m_lastPage = page;
    tw_view->setCurrentWidget(page);
}

void DatasetPlugin::setPipelineWidget(QWidget* pipeline)
{
    PluginWidgets::place(w_pipeline, pipeline);
}

void DatasetPlugin::setAnalysisWidget(QWidget* analysis)
{
    PluginWidgets::place(w_analysis, analysis);
}

void DatasetPlugin::setBehaviorWidget(QWidget* behavior)
{
    PluginWidgets::place(w_behavior, behavior);
}

QIcon DatasetPlugin::icon() const
{
    return icons() ? icons()->icon(IconFont::Database) : QIcon();
}

QString DatasetPlugin::modeName() const
{
    return DD::datasetMode();
}

void DatasetPlugin::setFileManagerVisible(bool visible)
{
    w_fileManager->setVisible(visible);
}

void DatasetPlugin::setConfirmHandler(std::function<bool(const QString&)> confirm)
{
    m_confirm = std::move(confirm);
}

void DatasetPlugin::setMessageHandler(std::function<void(const QString&)> message)
{
    m_message = std::move(message);
}

void DatasetPlugin::buildPipelines()
{
    m_pipeline = new DatasetPipeline;
    setPipelineWidget(m_pipeline);
    m_analysis = new AnalysisPipeline;
    setAnalysisWidget(m_analysis);
    m_behavior = new BehaviorView;
    setBehaviorWidget(m_behavior);
    connect(m_behavior, &BehaviorView::sendStatusMessage, this, &DatasetPlugin::sendStatusMessage);
    // After a run the tree shows and selects what it wrote, and the status bar says it.
    for (AbstractPipeline* pipeline :
         {static_cast<AbstractPipeline*>(m_pipeline), static_cast<AbstractPipeline*>(m_analysis),
          static_cast<AbstractPipeline*>(m_behavior->pipeline())})
        connect(pipeline, &AbstractPipeline::sendOperationProcessFinished, this,
                [this](const QString&, const QStringList& datapaths) {
                    if (!reloadFile() || datapaths.isEmpty())
                        return;
                    m_tree->selectPaths(datapaths);
                    emit sendStatusMessage(
                        ZarviMainDefinitions::writtenText().arg(RunSummary::describe(datapaths)));
                });
    // The analyses start from the datasets chosen for processing and may then choose others.
    connect(m_pipeline->selector(), &DatasetSelector::selectionChanged, m_analysis,
            &AnalysisPipeline::follow);
}

bool DatasetPlugin::reloadFile()
{
    std::vector<DataFileNode> nodes;
    if (!readFileTree(nodes))
        return false;
    // The analyses' list first, so that it holds the new results when the processing page chooses them.
    m_analysis->reload(filePath());
    m_pipeline->reload(filePath());
    m_behavior->setFile(filePath());
    m_tree->setNodes(std::move(nodes));
    m_attributes->showHistory(*m_tree, m_tree->currentPath());
    onSelectionChanged();
    return true;
}

int DatasetPlugin::displayPaths(const QStringList& paths)
{
    QStringList signalPaths;
    QStringList eventPaths;
    QStringList stackPaths;
    int added = 0;
    for (const QString& path : paths) {
        const DataFileNode* node = m_tree->node(path);
        if (!node)
            continue;
        if (const QStringList results = perieventResults(path); !results.isEmpty()) {
            for (const QString& result : results)
                added += showPerievents(result);
            continue;
        }
        QString target = path;
        if (node->kind == ObjectKind::Group) {
            // A sensor group stands for what it holds.
            const QString values = SignalDataset::valuesPath(path);
            const QString stack = path + QLatin1Char('/') + FD::ImageStack;
            target = m_tree->node(values) ? values : m_tree->node(stack) ? stack : QString();
        }
        const DataFileNode* shown = target.isEmpty() ? nullptr : m_tree->node(target);
        if (!shown || shown->kind != ObjectKind::Dataset)
            continue;
        if (EventDisplayData::isEventArray(*shown)) {
            if (!eventPaths.contains(target))
                eventPaths << target;
        } else if (shown->dimensions.size() == 3 && !stackPaths.contains(target))
            stackPaths << target;
        else if (shown->dimensions.size() == 1 && shown->name != FD::Time && !signalPaths.contains(target))
            signalPaths << target;
    }
    // Events recorded with a signal shown go over its plot; the others get a raster.
    const QStringList overSignals = EventDisplayData::sameRecording(eventPaths, signalPaths);
    added += signalPaths.isEmpty() ? 0 : showSignals(signalPaths, overSignals);
    for (const QString& path : overSignals)
        eventPaths.removeAll(path);
    added += eventPaths.isEmpty() ? 0 : showEvents(eventPaths);
    for (const QString& path : stackPaths)
        added += showImageStack(path);
    return added;
}

bool DatasetPlugin::readDisplayData(const QStringList& signalPaths, const QStringList& eventPaths,
                                    DisplayData& data)
{
    QString error;
    const bool read = DisplayDataReader::read(filePath(), signalPaths, eventPaths, data, error);
    for (const QString& message : read ? data.errors : QStringList{error})
        emit sendStatusMessage(message);
    return read;
}

int DatasetPlugin::showSignals(const QStringList& paths, const QStringList& eventPaths)
{
    DisplayData data;
    if (!readDisplayData(paths, eventPaths, data) || data.signalList.empty())
        return 0;
    auto plot = std::make_unique<SignalPlotWidget>();
    for (auto& [name, signal] : data.signalList)
        plot->addSignal(name, std::move(signal));
    for (const LabelledEvents& events : data.eventList)
        plot->addEvents(events);
    const QString title = data.signalList.size() == 1 ? data.signalList.front().first : DD::signalsTabTitle();
    return addDisplayTab(plot.release(), title, data.readPaths); // the tab widget owns it now
}

int DatasetPlugin::showEvents(const QStringList& paths)
{
    DisplayData data;
    if (!readDisplayData({}, paths, data) || data.eventList.empty())
        return 0;
    QStringList recorded;
    for (const QString& path : data.readPaths)
        for (const QString& signal : EventDisplayData::recordingSignals(m_tree->nodes(), path))
            if (!recorded.contains(signal))
                recorded << signal;
    auto display = std::make_unique<EventDisplayWidget>(std::move(data.eventList));
    if (!recorded.isEmpty())
        display->setSignalLoader([this, recorded] {
            DisplayData signalData;
            readDisplayData(recorded, {}, signalData);
            return std::move(signalData.signalList);
        });
    const QString title = data.readPaths.size() == 1 ? DisplayDataReader::displayName(data.readPaths.first())
                                                     : DD::eventsTabTitle();
    return addDisplayTab(display.release(), title, data.readPaths); // the tab widget owns it now
}

QStringList DatasetPlugin::perieventResults(const QString& path) const
{
    // A perievent matrix, or a group holding one directly or per side.
    using AD = AnalysisOperationDefinitions;
    const QString matrix = QLatin1Char('/') + AD::PerieventMatrix;
    QStringList results;
    for (const QString& candidate : {path, path + matrix, path + QLatin1Char('/') + AD::Onset + matrix,
                                     path + QLatin1Char('/') + AD::Offset + matrix}) {
        const DataFileNode* node = m_tree->node(candidate);
        if (node && PerieventResultFile::isMatrix(*node))
            results << candidate;
    }
    return results;
}

int DatasetPlugin::showPerievents(const QString& path)
{
    auto view = std::make_unique<PerieventResultView>();
    QString error;
    if (!view->load(filePath(), path, error)) {
        emit sendStatusMessage(error);
        return 0;
    }
    return addDisplayTab(view.release(), DisplayDataReader::displayName(path),
                         {path}); // the tab widget owns it now
}

int DatasetPlugin::showImageStack(const QString& path)
{
    auto stack = std::make_unique<ImageStackWidget>(filePath(), path);
    QString error;
    if (!stack->load(error)) {
        emit sendStatusMessage(DD::readFailedMessage().arg(path, error));
        return 0;
    }
    connect(stack.get(), &ImageStackWidget::sendStatusMessage, this, &AbstractPlugin::sendStatusMessage);
    return addDisplayTab(stack.release(), DisplayDataReader::displayName(path),
                         {path}); // the tab widget owns it now
}

int DatasetPlugin::addDisplayTab(QWidget* display, const QString& title, const QStringList& paths)
{
    DisplayedPaths::set(display, paths);
    const int index = tw_view->addTab(display, title);
    tw_view->setTabToolTip(index, paths.join(QLatin1Char('\n')));
    tw_view->setCurrentIndex(index);
    return 1;
}

bool DatasetPlugin::deletePaths(const QStringList& paths)
{
    // A member of a group that goes anyway needs no removal of its own.
    QStringList targets;
    for (const QString& path : DatasetDeletion::outermost(paths))
        if (m_tree->node(path))
            targets << path;
    if (targets.isEmpty() || !m_confirm(DD::deleteQuestion().arg(targets.join(QStringLiteral("<br>")))))
        return false;

    const DatasetDeletion::Result removal = DatasetDeletion::remove(filePath(), targets);
    if (removal.busy) {
        emit sendStatusMessage(DD::fileBusyMessage());
        return false;
    }
    if (!removal.openError.isEmpty()) {
        m_message(DD::deleteFailedMessage().arg(targets.join(QStringLiteral(", ")), removal.openError));
        return false;
    }
    const QStringList& failures = removal.failures;
    closeDisplaysUnder(targets);
    reloadFile();
    if (!failures.isEmpty()) {
        m_message(failures.join(QStringLiteral("<br>")));
        return false;
    }
    // The file keeps the space of what was removed until it is rewritten.
    if (m_confirm(DD::compactQuestion()))
        compactFile();
    return true;
}

QString DatasetPlugin::renamePath(const QString& path)
{
    const QString newPath = m_editing->rename(filePath(), path);
    if (newPath.isEmpty())
        return {};
    closeDisplaysUnder({path});
    reloadFile();
    m_tree->selectPaths({newPath});
    return newPath;
}

bool DatasetPlugin::compactFile()
{
    const bool compacted = m_editing->compact(filePath());
    if (compacted)
        reloadFile();
    return compacted;
}

void DatasetPlugin::closeDisplaysUnder(const QStringList& paths)
{
    for (int i = tw_view->count() - 1; i >= PageCount; --i)
        if (DisplayedPaths::anyUnder(tw_view->widget(i), paths))
            onViewTabCloseRequested(i);
}

void DatasetPlugin::onDisplayClicked()
{
    const QStringList paths = m_tree->selectedPaths();
    if (displayPaths(paths) == 0 && !paths.isEmpty())
        emit sendStatusMessage(DD::nothingToDisplayMessage().arg(paths.join(QStringLiteral(", "))));
}

void DatasetPlugin::onDeleteClicked()
{
    deletePaths(m_tree->selectedPaths());
}

void DatasetPlugin::onSelectionChanged()
{
    const bool any = !m_tree->selectedPaths().isEmpty();
    tb_display->setEnabled(any);
    tb_delete->setEnabled(any);
}

void DatasetPlugin::onViewTabChanged(int index)
{
    tb_pipeline->setChecked(index == tw_view->indexOf(w_pipeline));
    tb_analysis->setChecked(index == tw_view->indexOf(w_analysis));
    tb_behavior->setChecked(index == tw_view->indexOf(w_behavior));
}

void DatasetPlugin::onViewTabCloseRequested(int index)
{
    if (index < PageCount)
        return;
    QWidget* display = tw_view->widget(index);
    tw_view->removeTab(index);
    display->deleteLater();
    // With no display left, the page last chosen comes back.
    if (tw_view->count() == PageCount)
        tw_view->setCurrentWidget(m_lastPage);
}

} // namespace zarvi
