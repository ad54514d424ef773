#include "fileeditor/FileEditorJob.h"

#include <QEventLoop>
#include <QMessageBox>
#include <QProgressDialog>
#include <QThread>

#include "definitions/ZarviMainDefinitions.h"
#include "framework/ProgressDialogFactory.h"

namespace zarvi {

FileEditorJob::FileEditorJob()
{
    m_progressDialog = ProgressDialogFactory::create(ZarviMainDefinitions::progressTitle());
    connect(m_progressDialog.get(), &QProgressDialog::canceled, this, [this] {
        if (m_running)
            cancel();
    });
    connect(this, &FileEditorJob::progressChanged, m_progressDialog.get(), &QProgressDialog::setValue);
    connect(this, &FileEditorJob::labelChanged, m_progressDialog.get(), &QProgressDialog::setLabelText);
}

FileEditorJob::~FileEditorJob()
{
    if (m_thread && m_thread->isRunning()) {
        cancel();
        m_thread->wait();
    }
}

bool FileEditorJob::start(const QString& label, Work work)
{
    if (m_running)
        return false;
    m_running = true;
    m_canceled = false;
    m_progressDialog->setLabelText(label);
    m_progressDialog->setValue(0);
    m_progressDialog->show();
    m_thread.reset(QThread::create([this, work = std::move(work)] { work(m_feedback); }));
    connect(m_thread.get(), &QThread::finished, this, &FileEditorJob::onThreadFinished, Qt::QueuedConnection);
    m_thread->start(QThread::InheritPriority);
    return true;
}

bool FileEditorJob::exec(const QString& label, Work work)
{
    QEventLoop loop;
    connect(this, &FileEditorJob::finished, &loop, &QEventLoop::quit);
    if (!start(label, std::move(work)))
        return false;
    loop.exec();
    return !m_canceled;
}

void FileEditorJob::onThreadFinished()
{
    m_thread->wait();
    m_running = false;
    m_progressDialog->hide();
    emit finished();
}

void FileEditorJob::showMessage(const QString& title, const QString& message, int icon)
{
    QMessageBox box(static_cast<QMessageBox::Icon>(icon), title, message, QMessageBox::Ok);
    box.setTextFormat(Qt::RichText);
    box.exec();
}

} // namespace zarvi
