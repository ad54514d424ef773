#include "framework/PreviewJob.h"

#include "definitions/ZarviMainDefinitions.h"
#include "framework/ProgressDialogFactory.h"

#include <QProgressDialog>
#include <QThread>

namespace zarvi {

PreviewJob::PreviewJob(QObject* parent) : QObject(parent)
{
    m_dialog = ProgressDialogFactory::create(ZarviMainDefinitions::previewProgressTitle());
    connect(m_dialog.get(), &QProgressDialog::canceled, this, &PreviewJob::cancel);
}

PreviewJob::~PreviewJob()
{
    if (m_thread) {
        m_canceled = true;
        m_thread->wait();
    }
}

bool PreviewJob::start(Work work)
{
    if (m_thread)
        return false;
    m_canceled = false;
    m_dialog->setLabelText(QString());
    m_dialog->setValue(0);
    m_dialog->show();
    m_thread.reset(QThread::create([this, work = std::move(work)] { work(&m_feedback); }));
    connect(m_thread.get(), &QThread::finished, this, &PreviewJob::onThreadFinished, Qt::QueuedConnection);
    m_thread->start();
    return true;
}

void PreviewJob::onThreadFinished()
{
    // finished() is sent just before the thread ends; wait for the end before releasing it.
    m_thread->wait();
    m_thread.reset();
    m_dialog->hide();
    emit finished(m_canceled.load());
}

void PreviewJob::JobFeedback::setProgress(int percent)
{
    QMetaObject::invokeMethod(
        &m_job, [job = &m_job, percent] { job->m_dialog->setValue(percent); }, Qt::QueuedConnection);
}

void PreviewJob::JobFeedback::setLabel(const QString& label)
{
    QMetaObject::invokeMethod(
        &m_job, [job = &m_job, label] { job->m_dialog->setLabelText(label); }, Qt::QueuedConnection);
}

} // namespace zarvi
