#pragma once

#include "framework/Feedback.h"

#include <QObject>

#include <atomic>
#include <functional>
#include <memory>

class QProgressDialog;
class QThread;

namespace zarvi {

/// Runs a view's preview computation off the GUI thread, behind a "Preview Progress"
/// dialog whose cancel button stops it, so that a long preview never freezes the
/// window. One computation at a time. The job object lives on the GUI thread, the
/// computation on a thread of its own; destroying the job cancels the computation
/// and waits for it.
class PreviewJob : public QObject
{
    Q_OBJECT

public:
    /// The computation; it polls the Feedback for cancel and reports progress through it.
    using Work = std::function<void(Feedback* feedback)>;

    explicit PreviewJob(QObject* parent = nullptr);
    ~PreviewJob() override;

    /// Starts `work` and shows the dialog; false when a computation is already running.
    bool start(Work work);
    bool isRunning() const { return m_thread != nullptr; }
    /// Asks the running computation to stop; finished(true) follows once it has.
    void cancel() { m_canceled = true; }
    QProgressDialog* progressDialog() const { return m_dialog.get(); }

signals:
    /// On the GUI thread, after the computation has returned and its thread has ended.
    void finished(bool canceled);

private:
    /// Carries the computation's progress and label to the dialog by queued calls.
    class JobFeedback : public Feedback
    {
    public:
        explicit JobFeedback(PreviewJob& job) : m_job(job) {}
        bool isCanceled() const override { return m_job.m_canceled.load(std::memory_order_relaxed); }
        void setProgress(int percent) override;
        void setLabel(const QString& label) override;

    private:
        PreviewJob& m_job;
    };

    void onThreadFinished();

    std::shared_ptr<QProgressDialog> m_dialog;
    std::unique_ptr<QThread> m_thread;
    std::atomic<bool> m_canceled{false};
    JobFeedback m_feedback{*this};
};

} // namespace zarvi
