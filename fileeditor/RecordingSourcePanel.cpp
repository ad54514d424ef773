#include "fileeditor/RecordingSourcePanel.h"

#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalBlocker>
#include <QToolButton>

#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/RecordingImport.h"

namespace zarvi {

namespace {

using Texts = FileEditorOperationDefinitions;

} // namespace

RecordingSourcePanel::RecordingSourcePanel(QWidget* parent) : QGroupBox(Texts::recordingTitle(), parent)
{
    auto* form = new QFormLayout(this);
    m_storesLabel = new QLabel(Texts::storesLabel(), this);
    m_stores = new QListWidget(this);
    m_stores->setObjectName(QStringLiteral("lw_stores"));
    m_stores->setToolTip(Texts::storesTooltip());
    m_stores->setMaximumHeight(120);
    form->addRow(m_storesLabel, m_stores);
    m_digitalInputsLabel = new QLabel(Texts::digitalInputsLabel(), this);
    m_digitalInputs = new QLineEdit(this);
    m_digitalInputs->setObjectName(QStringLiteral("le_digitalInputs"));
    m_browseDigitalInputs = new QToolButton(this);
    m_browseDigitalInputs->setObjectName(QStringLiteral("tb_browseDigitalInputs"));
    m_browseDigitalInputs->setText(Texts::browseText());
    auto* row = new QHBoxLayout;
    row->addWidget(m_digitalInputs);
    row->addWidget(m_browseDigitalInputs);
    form->addRow(m_digitalInputsLabel, row);
    m_found = new QLabel(this);
    m_found->setObjectName(QStringLiteral("lb_found"));
    m_found->setWordWrap(true);
    m_found->setTextFormat(Qt::RichText);
    form->addRow(m_found);

    connect(m_stores, &QListWidget::itemChanged, this, &RecordingSourcePanel::describe);
    connect(m_digitalInputs, &QLineEdit::editingFinished, this, &RecordingSourcePanel::describe);
    connect(m_browseDigitalInputs, &QToolButton::clicked, this, &RecordingSourcePanel::browseDigitalInputs);
    setSource(QString());
}

void RecordingSourcePanel::setSource(const QString& path)
{
    m_path = path;
    {
        const QSignalBlocker blocker(m_stores);
        m_stores->clear();
    }
    describe();
    const QSignalBlocker blocker(m_stores);
    for (const QString& store : m_summary.stores) {
        auto* item = new QListWidgetItem(store, m_stores);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Checked);
    }
    const bool block = hasStores();
    const bool photometry = m_summary.format == Texts::NeurophotometricsFormat;
    m_storesLabel->setVisible(block);
    m_stores->setVisible(block);
    m_digitalInputsLabel->setVisible(photometry);
    m_digitalInputs->setVisible(photometry);
    m_browseDigitalInputs->setVisible(photometry);
}

bool RecordingSourcePanel::hasStores() const
{
    return m_summary.format == Texts::TdtFormat && m_stores->count() > 0;
}

QStringList RecordingSourcePanel::chosenStores() const
{
    QStringList stores;
    for (int i = 0; i < m_stores->count(); ++i) {
        if (m_stores->item(i)->checkState() == Qt::Checked)
            stores << m_stores->item(i)->text();
    }
    return stores;
}

QString RecordingSourcePanel::digitalInputsPath() const
{
    return m_summary.format == Texts::NeurophotometricsFormat ? m_digitalInputs->text().trimmed() : QString();
}

void RecordingSourcePanel::describe()
{
    if (m_path.isEmpty()) {
        m_summary = RecordingSummary();
        m_found->setText(Texts::chooseSourceMessage());
        return;
    }
    RecordingConversionConfig config;
    config.sourcePath = m_path;
    config.stores = chosenStores();
    config.digitalInputsPath = digitalInputsPath();
    if (hasStores() && config.stores.isEmpty()) {
        m_found->setText(Texts::chooseStoresMessage());
        return;
    }
    m_summary = RecordingImport::describe(config);
    m_found->setText(m_summary.ok() ? m_summary.text(m_path) : m_summary.error);
}

void RecordingSourcePanel::browseDigitalInputs()
{
    const QString path = QFileDialog::getOpenFileName(this, Texts::digitalInputsLabel(),
                                                      m_digitalInputs->text(), Texts::spreadsheetFilter());
    if (path.isEmpty())
        return;
    m_digitalInputs->setText(path);
    describe();
}

} // namespace zarvi
