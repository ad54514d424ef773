#include "framework/PipelineSummaryDialog.h"

#include "definitions/ZarviMainDefinitions.h"
#include "framework/PipelineFile.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace zarvi {

namespace {

using ZD = ZarviMainDefinitions;

QLabel* makeLabel(QWidget* parent, const char* objectName, const QString& text)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(QString::fromLatin1(objectName));
    label->setTextFormat(Qt::RichText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

PipelineSummaryDialog::PipelineSummaryDialog(const QList<QVariantMap>& steps, const QString& datasetsHeading,
                                             const QStringList& datasets, const QString& acceptText,
                                             QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(ZD::pipelineTitle());
    QStringList lines;
    for (qsizetype i = 0; i < steps.size(); ++i)
        lines << QStringLiteral("%1. %2").arg(i + 1).arg(PipelineFile::describe(steps[i]).toHtmlEscaped());
    QStringList shown;
    for (const QString& dataset : datasets)
        shown << QStringLiteral("<b>%1</b>").arg(dataset.toHtmlEscaped());

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(makeLabel(this, "lb_stepsHeading", ZD::pipelineStepsText()));
    m_steps = makeLabel(this, "lb_steps", lines.join(QStringLiteral("<br>")));
    layout->addWidget(m_steps);
    layout->addWidget(makeLabel(this, "lb_datasetsHeading", datasetsHeading));
    m_datasets = makeLabel(this, "lb_datasets", shown.join(QStringLiteral("<br>")));
    layout->addWidget(m_datasets);

    auto* buttons = new QDialogButtonBox(this);
    m_accept = buttons->addButton(acceptText, QDialogButtonBox::AcceptRole);
    m_accept->setObjectName(QStringLiteral("pb_accept"));
    m_accept->setDefault(true);
    m_cancel = buttons->addButton(QDialogButtonBox::Cancel);
    m_cancel->setObjectName(QStringLiteral("pb_cancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

} // namespace zarvi
