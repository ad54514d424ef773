#include "signal/SignalOperationView.h"

#include "signal/SignalFileReader.h"

#include <QLabel>

namespace zarvi {

void SignalOperationView::datasetsChanged()
{
    m_sampleRate =
        datapaths().isEmpty() ? 0.0 : SignalFileReader::sampleRate(filepath(), datapaths().first());
    m_sampleCount =
        datapaths().isEmpty() ? 0 : SignalFileReader::sampleCount(filepath(), datapaths().first());
}

QLabel* SignalOperationView::makeValidationLabel(const QString& objectName)
{
    auto* label = new QLabel(this);
    label->setObjectName(objectName);
    label->setStyleSheet(QStringLiteral("color: %1;").arg(QStringLiteral("red")));
    label->setWordWrap(true);
    label->hide();
    return label;
}

void SignalOperationView::setValidationText(QLabel* label, const QString& text)
{
    label->setText(text);
    label->setVisible(!text.isEmpty());
}

} // namespace zarvi
