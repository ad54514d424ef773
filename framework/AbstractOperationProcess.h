#pragma once

#include "datafile/Feedback.h"
#include "framework/ParameterValues.h"

#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <atomic>
#include <functional>

namespace zarvi {

class RunTransaction;
struct OperationDescriptor;

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
    void sendProcessFinished(const QString& filepath, const QStringList& datapaths,
                             const QStringList& errors);
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

    /// Opens the run's transaction on the data file, with outputs in numbered groups
    /// "<category>/<device>/<kind>/<series>/<Output><K>" named after the operation's
    /// declared output name and recording the parameters and `sources`. False after
    /// adding the error when the file cannot be opened or an input is not in it.
    bool openRun(RunTransaction& run, const QString& category, const QString& kind,
                 const QStringList& sources);
    /// The loop every family shares: calls step(i, feedback) for each of `count`
    /// inputs, with the feedback's progress scaled to that input's share of the run,
    /// until a step fails, an error is added or a cancel arrives; then commits the run,
    /// or rolls it back so that nothing of it is left.
    void runInputs(RunTransaction& run, int count,
                   const std::function<bool(int input, Feedback* step)>& step);

    void addError(const QString& error) { m_errors << error; }
    void addOutput(const QString& datapath) { m_outputs << datapath; }
    /// Formats (line breaks, colours) and sends a message to the view.
    void sendMessage(const QString& title, const QString& message, const QString& details, MessageIcon icon);
    void setProgress(int percent, bool setApplicationModal = true);
    void setProgressLabel(const QString& label);
    /// Shows a kernel's warning once per run, titled "Warning Operation".
    void warn(const QString& message);

    QString m_filepath;
    QStringList m_sourceDatapaths;
    /// The operation's declaration, during a run.
    const OperationDescriptor* m_descriptor = nullptr;
    /// The operation's parameters, normalised to their declared kinds, as recorded in the file.
    ParameterValues m_parameters;
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
        void warn(const QString& message) override { m_process.warn(message); }

    private:
        AbstractOperationProcess& m_process;
    };

    std::atomic<bool> m_cancelRequested{false};
    /// The run's outputs are in the file: a cancel that comes later no longer undoes them.
    bool m_committed = false;
    ProcessFeedback m_feedback{*this};
    int m_lastProgress = -1;
    QStringList m_warningsSent;
};

} // namespace zarvi
