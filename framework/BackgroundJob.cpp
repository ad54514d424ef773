#include "framework/BackgroundJob.h"

#include "framework/ProgressDialogFactory.h"

#include <QEventLoop>
#include <QMessageBox>
#include <QProgressDialog>
#include <QThread>

namespace zarvi {

BackgroundJob::BackgroundJob(const QString& dialogTitle, QObject* parent) : QObject(parent)
{
    m_dialog = ProgressDialogFactory::create(dialogTitle);
    connect(m_dialog.get(), &QProgressDialog::canceled, this, [this] {
        if (isRunning())
            cancel();
    });
    connect(this, &BackgroundJob::progressChanged, m_dialog.get(), &QProgressDialog::setValue);
}

BackgroundJob::~BackgroundJob()
{
    if (m_thread) {
        cancel();
        m_thread->wait();
    }
}

bool BackgroundJob::start(const QString& label, Work work)
{
    if (m_thread)
        return false;
    m_canceled = false;
    m_warnings.clear();
    m_dialog->setLabelText(label);
    m_dialog->setValue(0);
    if (m_dialogShown)
        m_dialog->show();
    m_thread.reset(QThread::create([this, work = std::move(work)] { work(m_feedback); }));
    connect(m_thread.get(), &QThread::finished, this, &BackgroundJob::onThreadFinished, Qt::QueuedConnection);
    m_thread->start(QThread::InheritPriority);
    return true;
}

bool BackgroundJob::exec(const QString& label, Work work)
{
    QEventLoop loop;
    connect(this, &BackgroundJob::finished, &loop, &QEventLoop::quit);
    if (!start(label, std::move(work)))
        return false;
    loop.exec();
    return !m_canceled;
}

void BackgroundJob::onThreadFinished()
{
    // QThread::finished is sent just before the thread ends; wait for the end before releasing it.
    m_thread->wait();
    m_thread.reset();
    m_dialog->hide();
    emit finished(m_canceled.load());
}

void BackgroundJob::showMessage(const QString& title, const QString& message, int icon)
{
    QMessageBox box(static_cast<QMessageBox::Icon>(icon), title, message, QMessageBox::Ok);
    box.setTextFormat(Qt::RichText);
    box.exec();
}

void BackgroundJob::JobFeedback::setProgress(int percent)
{
    emit m_job.progressChanged(percent);
}

void BackgroundJob::JobFeedback::setLabel(const QString& label)
{
    QMetaObject::invokeMethod(
        m_job.m_dialog.get(), [dialog = m_job.m_dialog.get(), label] { dialog->setLabelText(label); },
        Qt::QueuedConnection);
}

void BackgroundJob::JobFeedback::warn(const QString& message)
{
    QMetaObject::invokeMethod(
        &m_job,
        [job = &m_job, message] {
            if (!job->m_warnings.contains(message))
                job->m_warnings << message;
        },
        Qt::QueuedConnection);
}

} // namespace zarvi
