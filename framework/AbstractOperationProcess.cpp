#include "framework/AbstractOperationProcess.h"

#include "definitions/FileDefinitions.h"
#include "definitions/LogMessageFormatter.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/OperationRegistry.h"
#include "framework/RunTransaction.h"

#include <QThread>

namespace zarvi {

AbstractOperationProcess::AbstractOperationProcess(QObject* parent) : QObject(parent) {}

bool AbstractOperationProcess::isCanceled() const
{
    return m_cancelRequested.load(std::memory_order_relaxed) ||
           QThread::currentThread()->isInterruptionRequested();
}

void AbstractOperationProcess::onStartProcessRequested(const QVariantMap& parameters)
{
    m_cancelRequested = false;
    startProcess(parameters);
}

void AbstractOperationProcess::onCancelProcessRequested()
{
    m_cancelRequested = true;
}

void AbstractOperationProcess::startProcess(const QVariantMap& parameters)
{
    m_errors.clear();
    m_outputs.clear();
    m_committed = false;
    m_lastProgress = -1;
    m_warningsSent.clear();
    QVariantMap operationParameters = parameters;
    m_filepath = operationParameters.take(FileDefinitions::Filepath).toString();
    m_sourceDatapaths = operationParameters.take(FileDefinitions::SourceDatapaths).toStringList();
    m_descriptor =
        OperationRegistry::instance().find(operationParameters.value(FileDefinitions::Operations).toString());

    QVariantMap normalized;
    const bool valid = OperationRegistry::instance().normalize(operationParameters, normalized, m_errors);
    m_parameters = ParameterValues(normalized);
    if (valid) {
        if (m_sourceDatapaths.isEmpty())
            addError(ZarviMainDefinitions::noDatasetsMessage());
        else
            runOperation();
    }
    // Once committed, the run stands: a cancel that came too late is not reported as one.
    if (!m_committed && isCanceled() && m_errors.isEmpty())
        addError(ZarviMainDefinitions::operationCanceledMessage());
    if (!m_errors.isEmpty())
        m_outputs.clear();
    else
        setProgress(100);
    afterRun();
    emit sendProcessFinished(m_filepath, m_outputs, m_errors);
}

bool AbstractOperationProcess::openRun(RunTransaction& run, const QString& category, const QString& kind,
                                       const QStringList& sources)
{
    if (!run.open(m_filepath, RunTransaction::FileMode::Existing)) {
        addError(run.lastError());
        return false;
    }
    // An input that is not in the file is an error, never silently left out.
    for (const QString& path : std::as_const(m_sourceDatapaths)) {
        if (!run.file().exists(run.file().fileId(), path))
            addError(FileDefinitions::datasetNotFoundMessage().arg(path));
    }
    if (!m_errors.isEmpty())
        return false;
    run.setOutputs({category, kind, m_descriptor->outputName, m_parameters.map(), sources});
    return true;
}

void AbstractOperationProcess::runInputs(RunTransaction& run, int count,
                                         const std::function<bool(int, Feedback*)>& step)
{
    for (int i = 0; i < count && m_errors.isEmpty() && !isCanceled(); ++i) {
        ScaledFeedback scaled(feedback(), 100 * i / count, 100 * (i + 1) / count);
        if (!step(i, &scaled))
            break;
    }
    if (!m_errors.isEmpty() || isCanceled())
        run.rollback();
    else if (!run.commit())
        addError(run.lastError());
    else
        m_committed = true;
}

void AbstractOperationProcess::warn(const QString& message)
{
    if (m_warningsSent.contains(message))
        return;
    m_warningsSent << message;
    sendMessage(ZarviMainDefinitions::warningOperationTitle(), message, QString(), MessageIcon::Warning);
}

void AbstractOperationProcess::sendMessage(const QString& title, const QString& message,
                                           const QString& details, MessageIcon icon)
{
    emit sendMessageToView(title, LogMessageFormatter::formatProcessMessage(message), details,
                           static_cast<int>(icon));
}

void AbstractOperationProcess::setProgress(int percent, bool setApplicationModal)
{
    // Progress only rises within a run, whatever stage reports it.
    if (percent <= m_lastProgress)
        return;
    m_lastProgress = percent;
    emit sendProgressToView(percent, setApplicationModal);
}

void AbstractOperationProcess::setProgressLabel(const QString& label)
{
    emit sendProgressLabelToView(label);
}

} // namespace zarvi
