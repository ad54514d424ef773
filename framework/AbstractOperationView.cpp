#include "framework/AbstractOperationView.h"

#include "definitions/FileDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/AbstractOperationProcess.h"
#include "framework/OperationRegistry.h"
#include "framework/OperationSettings.h"
#include "framework/ParameterField.h"
#include "framework/ProgressDialogFactory.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QMessageBox>
#include <QProgressDialog>
#include <QThread>

namespace zarvi {

namespace {

void showMessageBox(const QString& title, const QString& message, const QString& details, int icon)
{
    QMessageBox box(static_cast<QMessageBox::Icon>(icon), title, message, QMessageBox::Ok);
    box.setTextFormat(Qt::RichText);
    if (!details.isEmpty())
        box.setDetailedText(details);
    box.exec();
}

} // namespace

AbstractOperationView::AbstractOperationView(const QString& operationName, QWidget* parent)
    : QWidget(parent), m_operationName(operationName), m_remembered(OperationSettings::last(operationName)),
      m_presentMessage(showMessageBox)
{
    m_progressDialog = ProgressDialogFactory::create(ZarviMainDefinitions::progressTitle());
    connect(m_progressDialog.get(), &QProgressDialog::canceled, this, [this] {
        if (!m_running)
            return;
        m_cancelRequested = true;
        emit sendCancelProcess();
    });
}

AbstractOperationView::~AbstractOperationView()
{
    if (m_thread && m_thread->isRunning() && !m_thread->isInterruptionRequested()) {
        m_thread->requestInterruption();
        m_thread->quit();
        m_thread->wait();
    }
    m_thread.reset();
    m_process.reset();
    m_progressDialog.reset();
}

void AbstractOperationView::setupProcess(const QString& filepath, const QStringList& datapaths)
{
    m_filepath = filepath;
    m_datapaths = datapaths;
    const OperationDescriptor* descriptor = OperationRegistry::instance().find(m_operationName);
    if (!m_process && descriptor)
        createProcess(*descriptor);
    datasetsChanged();
}

void AbstractOperationView::createProcess(const OperationDescriptor& descriptor)
{
    m_process = descriptor.createProcess();
    m_thread = std::make_shared<QThread>();
    m_process->moveToThread(m_thread.get());
    m_thread->start(QThread::InheritPriority);

    AbstractOperationProcess* process = m_process.get();
    connect(this, &AbstractOperationView::sendStartProcess, process,
            &AbstractOperationProcess::onStartProcessRequested, Qt::QueuedConnection);
    // The worker is busy for the whole run, so a queued cancel would arrive only
    // after it; the slot merely raises an atomic flag and is safe to call directly.
    connect(this, &AbstractOperationView::sendCancelProcess, process,
            &AbstractOperationProcess::onCancelProcessRequested, Qt::DirectConnection);
    connect(process, &AbstractOperationProcess::sendProgressToView, this,
            &AbstractOperationView::onProgressReceived, Qt::QueuedConnection);
    connect(process, &AbstractOperationProcess::sendMessageToView, this,
            &AbstractOperationView::onMessageReceived, Qt::QueuedConnection);
    connect(process, &AbstractOperationProcess::sendProcessFinished, this,
            &AbstractOperationView::onProcessFinished, Qt::QueuedConnection);
    connect(process, &AbstractOperationProcess::sendProgressLabelToView, this,
            &AbstractOperationView::onProgressLabelReceived, Qt::QueuedConnection);
}

bool AbstractOperationView::run()
{
    if (m_running || !m_process)
        return false;
    QVariantMap parameters;
    if (!buildParameters(parameters))
        return false;
    OperationSettings::remember(m_operationName, parameters);
    parameters.insert(FileDefinitions::Operations, m_operationName);
    parameters.insert(FileDefinitions::Filepath, m_filepath);
    parameters.insert(FileDefinitions::SourceDatapaths, m_datapaths);
    m_running = true;
    m_cancelRequested = false;
    m_progressDialog->setLabelText(QString());
    m_progressDialog->setValue(0);
    m_progressDialog->show();
    emit sendStartProcess(parameters);
    return true;
}

void AbstractOperationView::onProgressReceived(int progress, bool setApplicationModal)
{
    // Pass the value on first: a modal dialog's setValue() turns the event loop,
    // which may deliver the next value before this one returned.
    emit sendProgress(progress, setApplicationModal);
    m_progressDialog->setWindowModality(setApplicationModal ? Qt::ApplicationModal : Qt::NonModal);
    m_progressDialog->setValue(progress);
}

void AbstractOperationView::onProgressLabelReceived(const QString& label)
{
    m_progressDialog->setLabelText(label);
}

const OperationParameter& AbstractOperationView::declaration(const QString& key) const
{
    const OperationDescriptor* descriptor = OperationRegistry::instance().find(m_operationName);
    const OperationParameter* parameter = descriptor ? descriptor->parameter(key) : nullptr;
    Q_ASSERT_X(parameter, "declaration", "the view asks for a parameter its operation does not declare");
    static const OperationParameter undeclared;
    return parameter ? *parameter : undeclared;
}

QWidget* AbstractOperationView::addParameterRow(QFormLayout* form, const QString& key,
                                                const QString& objectName, QWidget* note)
{
    const OperationParameter& parameter = declaration(key);
    QWidget* field = ParameterField::create(parameter, objectName, this);
    if (const QVariant last = m_remembered.value(key); last.isValid())
        ParameterField::setValue(field, last);
    // A check box says what it switches itself, so a click on its words toggles it.
    if (auto* box = qobject_cast<QCheckBox*>(field)) {
        box->setText(ParameterField::label(parameter));
        form->addRow(box);
    } else {
        form->addRow(ParameterField::label(parameter), field);
    }
    // Under the field and across the form, a note wraps at the dialog's width, not a field's.
    if (note)
        form->addRow(note);
    return field;
}

void AbstractOperationView::showMessage(const QString& title, const QString& message, const QString& details,
                                        int icon)
{
    m_presentMessage(title, message, details, icon);
}

void AbstractOperationView::onMessageReceived(const QString& title, const QString& message,
                                              const QString& details, int icon)
{
    m_presentMessage(title, message, details, icon);
}

void AbstractOperationView::onProcessFinished(const QString& filepath, const QStringList& datapaths,
                                              const QStringList& errors)
{
    m_running = false;
    m_progressDialog->hide();
    if (!errors.isEmpty() && !m_cancelRequested)
        m_presentMessage(ZarviMainDefinitions::errorOperationTitle(), errors.join(QStringLiteral("<br>")),
                         QString(), QMessageBox::Critical);
    emit sendProcessFinished(filepath, datapaths, errors);
}

QLabel* AbstractOperationView::makeValidationLabel(const QString& objectName)
{
    auto* label = new QLabel(this);
    label->setObjectName(objectName);
    label->setStyleSheet(QStringLiteral("color: red;"));
    label->setWordWrap(true);
    label->hide();
    return label;
}

void AbstractOperationView::setValidationText(QLabel* label, const QString& text)
{
    label->setText(text);
    label->setVisible(!text.isEmpty());
}

} // namespace zarvi
