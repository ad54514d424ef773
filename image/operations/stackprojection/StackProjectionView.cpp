#include "image/operations/stackprojection/StackProjectionView.h"

#include "definitions/ImageOperationDefinitions.h"
#include "framework/ParameterField.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>

namespace zarvi {

using ID = ImageOperationDefinitions;

StackProjectionView::StackProjectionView(QWidget* parent) : ImageOperationView(ID::StackProjection, parent)
{
    QFormLayout* form = addParameterGroup(ID::stackProjectionParametersTitle(),
                                          QStringLiteral("gb_stackProjectionParameters"));
    cb_projectionMethod = static_cast<QComboBox*>(
        addParameterRow(form, ID::ProjectionMethod, QStringLiteral("cb_projectionMethod")));
    cb_concatenateSeries = static_cast<QCheckBox*>(
        addParameterRow(form, ID::ConcatenateSeries, QStringLiteral("cb_concatenateSeries")));
}

bool StackProjectionView::buildParameters(QVariantMap& parameters)
{
    parameters.insert(ID::ProjectionMethod, cb_projectionMethod->currentText());
    parameters.insert(ID::ConcatenateSeries, ParameterField::value(cb_concatenateSeries));
    return true;
}

} // namespace zarvi
