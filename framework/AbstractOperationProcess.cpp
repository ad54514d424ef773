#include "framework/AbstractOperationProcess.h"

#include "definitions/FileDefinitions.h"
#include "definitions/LogMessageFormatter.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/OperationRegistry.h"

#include <QThread>

namespace zarvi {

AbstractOperationProcess::AbstractOperationProcess(QObject* parent) : QObject(parent) {}

bool AbstractOperationProcess::isCanceled() const
{
    return m_cancelRequested.load(std::memory_order_relaxed) || QThread::currentThread()->isInterruptionRequested();
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
    m_lastProgress = -1;
    QVariantMap operationParameters = parameters;
    m_filepath = operationParameters.take(FileDefinitions::Filepath).toString();
    m_sourceDatapaths = operationParameters.take(FileDefinitions::SourceDatapaths).toStringList();

    if (OperationRegistry::instance().normalize(operationParameters, m_parameters, m_errors)) {
        if (m_sourceDatapaths.isEmpty())
            addError(ZarviMainDefinitions::noDatasetsMessage());
        else
            runOperation();
    }
    if (isCanceled() && m_errors.isEmpty())
        addError(ZarviMainDefinitions::operationCanceledMessage());
    if (!m_errors.isEmpty())
        m_outputs.clear();
    else
        setProgress(100);
    afterRun();
    emit sendProcessFinished(m_filepath, m_outputs, m_errors);
}

void AbstractOperationProcess::sendMessage(const QString& title, const QString& message, const QString& details,
                                           MessageIcon icon)
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
