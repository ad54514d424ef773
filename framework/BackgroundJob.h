#pragma once

#include "datafile/Feedback.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>

class QProgressDialog;
class QThread;

namespace zarvi {

/// Shows an outcome to the user as a rich-text message box; tests put a collector in its place.
using MessagePresenter = std::function<void(const QString& title, const QString& message, int icon)>;

/// Runs one piece of work of a view (a preview, a conversion, an export) on a thread
/// of its own, so that the GUI never computes and never blocks, while a progress
/// dialog ("Preview Progress", "Progress") shows its progress and label; the dialog's
/// Cancel asks the work to stop through its Feedback. Progress, labels and warnings
/// travel to the GUI thread by queued calls. One piece of work at a time. The job
/// lives on the GUI thread; destroying it while the work runs cancels it and waits.
class BackgroundJob : public QObject
{
    Q_OBJECT

public:
    using Work = std::function<void(Feedback& feedback)>;

    explicit BackgroundJob(const QString& dialogTitle, QObject* parent = nullptr);
    ~BackgroundJob() override;

    /// Starts `work` and shows the dialog with `label`; false while work is already running.
    bool start(const QString& label, Work work);
    /// Starts work and waits for it in a local event loop, the GUI staying responsive.
    /// True when the work ran to its end without a cancel.
    bool exec(const QString& label, Work work);
    bool isRunning() const { return m_thread != nullptr; }
    /// Short work that runs after every edit (a preview of one chunk) shows no dialog.
    void setDialogShown(bool shown) { m_dialogShown = shown; }
    /// Asks the running work to stop. Safe from any thread.
    void cancel() { m_canceled = true; }
    bool wasCanceled() const { return m_canceled; }
    /// The warnings the last work reported, each once, in order; complete when finished() is sent.
    QStringList warnings() const { return m_warnings; }
    QProgressDialog* progressDialog() const { return m_dialog.get(); }

    /// A modal message box with rich text and the icon (QMessageBox::Icon) given.
    static void showMessage(const QString& title, const QString& message, int icon);

signals:
    void progressChanged(int percent);
    /// On the GUI thread, after the work has returned and its thread has ended.
    void finished(bool canceled);

private:
    /// Carries the work's progress, label and warnings to the GUI thread.
    class JobFeedback : public Feedback
    {
    public:
        explicit JobFeedback(BackgroundJob& job) : m_job(job) {}
        bool isCanceled() const override { return m_job.m_canceled.load(std::memory_order_relaxed); }
        void setProgress(int percent) override;
        void setLabel(const QString& label) override;
        void warn(const QString& message) override;

    private:
        BackgroundJob& m_job;
    };

    void onThreadFinished();

    std::shared_ptr<QProgressDialog> m_dialog;
    std::unique_ptr<QThread> m_thread;
    std::atomic<bool> m_canceled{false};
    bool m_dialogShown = true;
    QStringList m_warnings;
    JobFeedback m_feedback{*this};
};

} // namespace zarvi
