#pragma once

#include <QObject>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>

#include "framework/Feedback.h"

class QProgressDialog;
class QThread;
class QWidget;

namespace zarvi {

/// Runs one file-editing job (a conversion or an export) on a worker thread of its own,
/// so that the GUI never blocks, while an application-modal "Progress" dialog shows its
/// progress and label; the dialog's Cancel asks the job to stop through its Feedback.
/// Progress and labels travel to the dialog by queued signals. Lives on the GUI thread;
/// the work runs on the worker. Destroying a job that still runs cancels it and waits.
class FileEditorJob : public QObject
{
    Q_OBJECT

public:
    using Work = std::function<void(Feedback&)>;
    /// Shows an outcome to the user; tests replace it to collect the texts instead.
    using MessagePresenter = std::function<void(const QString& title, const QString& message, int icon)>;

    FileEditorJob();
    ~FileEditorJob() override;

    /// Starts work on a new worker thread and shows the progress dialog; false while a
    /// job is already running.
    bool start(const QString& label, Work work);
    /// Starts work and waits for it in a local event loop, the GUI staying responsive.
    /// True when the work ran to its end without a cancel.
    bool exec(const QString& label, Work work);
    /// Asks the running work to stop. Safe from any thread.
    void cancel() { m_canceled = true; }
    bool wasCanceled() const { return m_canceled; }
    QProgressDialog* progressDialog() const { return m_progressDialog.get(); }

    /// A modal message box with rich text and the icon (QMessageBox::Icon) given.
    static void showMessage(const QString& title, const QString& message, int icon);

signals:
    void progressChanged(int percent);
    void labelChanged(const QString& label);
    void finished();

private:
    class JobFeedback : public Feedback
    {
    public:
        explicit JobFeedback(FileEditorJob& job) : m_job(job) {}
        bool isCanceled() const override { return m_job.m_canceled; }
        void setProgress(int percent) override { emit m_job.progressChanged(percent); }
        void setLabel(const QString& label) override { emit m_job.labelChanged(label); }

    private:
        FileEditorJob& m_job;
    };

    void onThreadFinished();

    std::shared_ptr<QProgressDialog> m_progressDialog;
    std::unique_ptr<QThread> m_thread;
    JobFeedback m_feedback{*this};
    std::atomic<bool> m_canceled{false};
    bool m_running = false;
};

} // namespace zarvi
