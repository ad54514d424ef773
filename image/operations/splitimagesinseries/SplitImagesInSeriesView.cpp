#include "image/operations/splitimagesinseries/SplitImagesInSeriesView.h"

#include "definitions/ImageOperationDefinitions.h"
#include "image/operations/splitimagesinseries/SeriesSplit.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QTimeEdit>

#include <optional>

namespace zarvi {

using ID = ImageOperationDefinitions;

SplitImagesInSeriesView::SplitImagesInSeriesView(QWidget* parent)
    : ImageOperationView(ID::SplitImagesInSeries, parent)
{
    QFormLayout* form = addParameterGroup(ID::splitParametersTitle(), QStringLiteral("gb_splitParameters"));
    cb_method = static_cast<QComboBox*>(addParameterRow(form, ID::Method, QStringLiteral("cb_method")));
    te_duration = new QTimeEdit(this);
    te_duration->setObjectName(QStringLiteral("te_duration"));
    te_duration->setDisplayFormat(ID::DurationFormat);
    te_duration->setToolTip(ID::splitDurationTooltip());
    const QTime last =
        QTime::fromString(rememberedParameters().value(ID::Duration).toString(), ID::DurationFormat);
    // A first split offers one second.
    te_duration->setTime(last.isValid() ? last : QTime(0, 0, 1));
    auto* durationLabel = new QLabel(ID::durationLabel(), this);
    durationLabel->setToolTip(ID::splitDurationTooltip());
    form->addRow(durationLabel, te_duration);
    lb_durationValidation = makeValidationLabel(QStringLiteral("lb_durationValidation"));
    form->addRow(lb_durationValidation);
    lb_seriesCount = new QLabel(this);
    lb_seriesCount->setObjectName(QStringLiteral("lb_seriesCount"));
    lb_seriesCount->setWordWrap(true);
    form->addRow(lb_seriesCount);

    connect(te_duration, &QTimeEdit::timeChanged, this, &SplitImagesInSeriesView::validate);
    connect(cb_method, &QComboBox::currentTextChanged, this, &SplitImagesInSeriesView::validate);
    validate();
}

QString SplitImagesInSeriesView::durationText() const
{
    return te_duration->time().toString(ID::DurationFormat);
}

void SplitImagesInSeriesView::datasetsChanged()
{
    ImageOperationView::datasetsChanged();
    validate();
}

bool SplitImagesInSeriesView::buildParameters(QVariantMap& parameters)
{
    if (!validate())
        return false;
    parameters.insert(ID::Method, cb_method->currentText());
    parameters.insert(ID::Duration, durationText());
    return true;
}

bool SplitImagesInSeriesView::validate()
{
    const QString text = durationText();
    const std::optional<double> duration = parseSplitDuration(text);
    setValidationText(lb_durationValidation,
                      duration ? QString() : ID::splitDurationMessage().arg(text, ID::DurationFormat));
    if (!duration || stackTime().empty()) {
        lb_seriesCount->clear();
        return duration.has_value();
    }
    const SplitMethod method = cb_method->currentText() == ID::SplitByDuration ? SplitMethod::SplitByDuration
                                                                               : SplitMethod::DetectTimeGaps;
    lb_seriesCount->setText(ID::seriesCountNote().arg(seriesStarts(stackTime(), method, *duration).size()));
    return true;
}

} // namespace zarvi
