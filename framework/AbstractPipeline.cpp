#include "framework/AbstractPipeline.h"

#include "definitions/ZarviMainDefinitions.h"
#include "framework/AbstractOperationView.h"
#include "framework/OperationDialog.h"
#include "framework/OperationViewRegistry.h"
#include "framework/PipelineFile.h"
#include "framework/PipelineSummaryDialog.h"
#include "framework/ProgressDialogFactory.h"

#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QVBoxLayout>

namespace zarvi {

AbstractPipeline::AbstractPipeline(OperationFamily family, QWidget* parent)
    : QWidget(parent), m_family(family),
      m_presentMessage([this](const QString& title, const QString& message) {
          QMessageBox::critical(this, title, message);
      }),
      m_presentSummary([](PipelineSummaryDialog& dialog) { return dialog.exec() == QDialog::Accepted; })
{
}

AbstractPipeline::~AbstractPipeline() = default;

void AbstractPipeline::buildOperationList()
{
    auto* layout = new QVBoxLayout(this);
    m_selectionLabel = new QLabel(this);
    m_selectionLabel->setWordWrap(true);
    layout->addWidget(m_selectionLabel);
    for (const QString& name : operationNames()) {
        auto* button = new QPushButton(OperationRegistry::instance().find(name)->shownTitle(), this);
        button->setObjectName(QStringLiteral("pb_") +
                              QString(name).remove(QLatin1Char(' ')).remove(QLatin1Char('/')));
        button->setProperty("operation", name);
        button->setToolTip(OperationRegistry::instance().find(name)->description);
        connect(button, &QPushButton::clicked, this, &AbstractPipeline::onOperationButtonClicked);
        layout->addWidget(button);
    }
    auto* load = new QPushButton(tr("Load Pipeline..."), this);
    load->setObjectName(QStringLiteral("pb_loadPipeline"));
    connect(load, &QPushButton::clicked, this, &AbstractPipeline::onLoadPipelineClicked);
    layout->addWidget(load);
    layout->addStretch();
}

QStringList AbstractPipeline::operationNames() const
{
    return OperationRegistry::instance().names(m_family);
}

void AbstractPipeline::setData(const QString& filepath, const QStringList& datapaths)
{
    m_filepath = filepath;
    m_datapaths = datapaths;
    if (m_selectionLabel)
        m_selectionLabel->setText(datapaths.isEmpty()
                                      ? tr("Select datasets to process.")
                                      : tr("%n dataset(s) selected.", nullptr, datapaths.size()));
    setEnabled(!filepath.isEmpty());
    m_dialogs.removeAll(nullptr);
    for (OperationDialog* dialog : std::as_const(m_dialogs))
        dialog->setData(filepath, datapaths);
}

OperationDialog* AbstractPipeline::createDialog(AbstractOperationView* view)
{
    return new OperationDialog(view, this);
}

OperationDialog* AbstractPipeline::openOperation(const QString& name)
{
    std::unique_ptr<AbstractOperationView> view = OperationViewRegistry::instance().create(name);
    if (!view)
        return nullptr;
    view->setupProcess(m_filepath, m_datapaths);
    if (const QString problem = view->selectionProblem(); !problem.isEmpty()) {
        m_presentMessage(ZarviMainDefinitions::errorOperationTitle(), problem);
        return nullptr;
    }
    connect(view.get(), &AbstractOperationView::sendProcessFinished, this,
            &AbstractPipeline::onPipelineFinished);
    connect(view.get(), &AbstractOperationView::sendAskToCloseAllDatasets, this,
            &AbstractPipeline::sendCloseAllDatasetsRequest);
    OperationDialog* dialog = createDialog(view.release()); // the dialog's layout now owns the view
    dialog->setData(m_filepath, m_datapaths);
    m_dialogs.removeAll(nullptr);
    m_dialogs << dialog;
    dialog->show();
    return dialog;
}

void AbstractPipeline::onOperationButtonClicked()
{
    if (const QObject* button = sender())
        openOperation(button->property("operation").toString());
}

void AbstractPipeline::onCancelPipelineReceived()
{
    if (m_runner)
        m_runner->requestCancel();
}

void AbstractPipeline::onProgressReceived(int progress)
{
    if (m_pipelineProgress)
        m_pipelineProgress->setValue(progress);
}

void AbstractPipeline::onLoadPipelineClicked()
{
    const QString path = QFileDialog::getOpenFileName(this, ZarviMainDefinitions::loadPipelineTitle(),
                                                      QString(), ZarviMainDefinitions::pipelineFileFilter());
    if (!path.isEmpty())
        loadPipeline(path);
}

bool AbstractPipeline::readChecked(const QString& path, QList<QVariantMap>& steps, QStringList& problems)
{
    QString error;
    if (!PipelineFile::read(path, steps, error)) {
        problems << error.toHtmlEscaped();
        return false;
    }
    return PipelineFile::check(steps, problems);
}

RunResult AbstractPipeline::loadPipeline(const QString& path)
{
    RunResult result;
    QList<QVariantMap> steps;
    if (!readChecked(path, steps, result.errors)) {
        m_presentMessage(ZarviMainDefinitions::errorOperationTitle(),
                         result.errors.join(QStringLiteral("<br>")));
        return result;
    }
    if (m_datapaths.isEmpty()) {
        result.errors << ZarviMainDefinitions::noDatasetsMessage();
        m_presentMessage(ZarviMainDefinitions::errorOperationTitle(), result.errors.first());
        return result;
    }
    PipelineSummaryDialog summary(steps, ZarviMainDefinitions::runsOnText(), m_datapaths,
                                  ZarviMainDefinitions::runButtonText(), this);
    if (!m_presentSummary(summary)) {
        result.canceled = true;
        return result;
    }
    result = runSteps(steps);
    if (!result.succeeded() && !result.canceled)
        m_presentMessage(ZarviMainDefinitions::errorOperationTitle(),
                         result.errors.join(QStringLiteral("<br>")));
    return result;
}

RunResult AbstractPipeline::runSavedPipeline(const QString& path)
{
    RunResult result;
    QList<QVariantMap> steps;
    if (!readChecked(path, steps, result.errors))
        return result;
    return runSteps(steps);
}

RunResult AbstractPipeline::runSteps(const QList<QVariantMap>& steps)
{
    m_runner = std::make_unique<OperationRunner>();
    m_pipelineProgress = ProgressDialogFactory::create(ZarviMainDefinitions::pipelineProgressTitle());
    connect(m_pipelineProgress.get(), &QProgressDialog::canceled, this,
            &AbstractPipeline::onCancelPipelineReceived);
    m_runner->onProgress = [this](int progress) { onProgressReceived(progress); };
    m_runner->onLabel = [this](const QString& label) { m_pipelineProgress->setLabelText(label); };
    m_pipelineProgress->show();
    const RunResult result = m_runner->runPipeline(steps, m_filepath, m_datapaths);
    m_pipelineProgress.reset();
    m_runner.reset();
    onPipelineFinished(result.filepath, result.datapaths, result.errors);
    return result;
}

void AbstractPipeline::onPipelineFinished(const QString& processedFile, const QStringList& processedData,
                                          const QStringList& errors)
{
    Q_UNUSED(errors);
    // Even a failed run may have been rolled back after touching the file: re-read it.
    emit sendOperationProcessFinished(processedFile, processedData);
}

} // namespace zarvi
