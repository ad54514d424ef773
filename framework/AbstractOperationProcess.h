#pragma once

#include "framework/Feedback.h"

#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <atomic>

namespace zarvi {

/// Icon of a message sent to the view; the values are those of the message box.
enum class MessageIcon
{
    Information = 1,
    Warning = 2,
    Critical = 3
};

/// The computing half of an operation. It lives on a worker thread of its own
/// and talks to its view only through signals: it receives the parameter map,
/// reports progress and messages, and finishes with the written data paths and
/// the errors found (empty means success). No widget code: the same process
/// serves the dialog and the command-line runner.
///
/// The parameter map carries, besides the operation's own keys, the file path
/// under "Filepath" and the input data paths under "SourceDatapaths"; those two
/// are taken out before the parameters are recorded in the file.
class AbstractOperationProcess : public QObject
{
    Q_OBJECT

public:
    explicit AbstractOperationProcess(QObject* parent = nullptr);

    /// True once a cancel was requested for the current run or the worker
    /// thread was asked to stop. Cheap; long loops poll it.
    bool isCanceled() const;
    Feedback* feedback() { return &m_feedback; }

signals:
    void sendProgressToView(int progress, bool setApplicationModal);
    void sendMessageToView(const QString& title, const QString& message, const QString& details, int icon);
    void sendProcessFinished(const QString& filepath, const QStringList& datapaths, const QStringList& errors);
    /// Names the stage now running ("Applying filter..."), for the progress dialog's label.
    void sendProgressLabelToView(const QString& label);

public slots:
    void onStartProcessRequested(const QVariantMap& parameters);
    /// Safe to call from any thread: it only raises the stop flag. The view
    /// connects it directly, since the worker's event loop is busy during a run.
    void onCancelProcessRequested();

protected:
    /// Shared by every process: checks the parameters against the operation's
    /// declaration, runs the family entry, and reports the result.
    virtual void startProcess(const QVariantMap& parameters);
    /// The family's run: reads inputs, calls computeOperation(), writes outputs.
    virtual void runOperation() = 0;
    /// The operation's own computation over the family's current input.
    virtual bool computeOperation() = 0;
    /// Called after every run, successful or not.
    virtual void afterRun() {}

    void addError(const QString& error) { m_errors << error; }
    void addOutput(const QString& datapath) { m_outputs << datapath; }
    /// Formats (line breaks, colours) and sends a message to the view.
    void sendMessage(const QString& title, const QString& message, const QString& details, MessageIcon icon);
    void setProgress(int percent, bool setApplicationModal = true);
    void setProgressLabel(const QString& label);

    QString m_filepath;
    QStringList m_sourceDatapaths;
    /// The operation's parameters, normalised to their declared kinds, as recorded in the file.
    QVariantMap m_parameters;
    QStringList m_errors;
    QStringList m_outputs;

private:
    /// The process's Feedback, handed to the kernels it calls.
    class ProcessFeedback : public Feedback
    {
    public:
        explicit ProcessFeedback(AbstractOperationProcess& process) : m_process(process) {}
        bool isCanceled() const override { return m_process.isCanceled(); }
        void setProgress(int percent) override { m_process.setProgress(percent); }
        void setLabel(const QString& label) override { m_process.setProgressLabel(label); }

    private:
        AbstractOperationProcess& m_process;
    };

    std::atomic<bool> m_cancelRequested{false};
    ProcessFeedback m_feedback{*this};
    int m_lastProgress = -1;
};

} // namespace zarvi
