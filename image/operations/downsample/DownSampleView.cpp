#include "image/operations/downsample/DownSampleView.h"

#include "definitions/ImageOperationDefinitions.h"
#include "image/operations/downsample/TemporalDownsample.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QSpinBox>

namespace zarvi {

using ID = ImageOperationDefinitions;

DownSampleView::DownSampleView(QWidget* parent) : ImageOperationView(ID::TemporalDownsample, parent)
{
    QFormLayout* form =
        addParameterGroup(ID::downsampleParametersTitle(), QStringLiteral("gb_downsampleParameters"));
    lb_factorValidation = makeValidationLabel(QStringLiteral("lb_factorValidation"));
    sb_factor = static_cast<QSpinBox*>(
        addParameterRow(form, ID::Factor, QStringLiteral("sb_factor"), lb_factorValidation));
    cb_method = static_cast<QComboBox*>(addParameterRow(form, ID::Method, QStringLiteral("cb_method")));
    connect(sb_factor, &QSpinBox::valueChanged, this, &DownSampleView::validate);
}

bool DownSampleView::validate()
{
    const bool tooLarge = stackInfo().frames > 0 &&
                          TemporalDownsample::isFactorTooLarge(stackInfo().frames, sb_factor->value());
    setValidationText(lb_factorValidation, tooLarge ? ID::factorTooLargeMessage()
                                                          .arg(sb_factor->value())
                                                          .arg(datapaths().value(0))
                                                          .arg(stackInfo().frames)
                                                    : QString());
    return !tooLarge;
}

void DownSampleView::datasetsChanged()
{
    ImageOperationView::datasetsChanged();
    validate();
}

bool DownSampleView::buildParameters(QVariantMap& parameters)
{
    if (!validate())
        return false;
    parameters.insert(ID::Factor, sb_factor->value());
    parameters.insert(ID::Method, cb_method->currentText());
    return true;
}

} // namespace zarvi
