#include "image/operations/binning/BinningView.h"

#include "definitions/ImageOperationDefinitions.h"
#include "image/operations/binning/FrameBinning.h"

#include <QComboBox>
#include <QFormLayout>

namespace zarvi {

using ID = ImageOperationDefinitions;

BinningView::BinningView(QWidget* parent) : ImageOperationView(ID::Binning, parent)
{
    QFormLayout* form =
        addParameterGroup(ID::binningParametersTitle(), QStringLiteral("gb_binningParameters"));
    cb_binningFactor =
        static_cast<QComboBox*>(addParameterRow(form, ID::BinningFactor, QStringLiteral("cb_binningFactor")));
    connect(cb_binningFactor, &QComboBox::currentTextChanged, this, &BinningView::updatePreview);
}

bool BinningView::buildParameters(QVariantMap& parameters)
{
    parameters.insert(ID::BinningFactor, cb_binningFactor->currentText());
    return true;
}

ImageFramePreview::Computation BinningView::previewComputation() const
{
    const int factor = cb_binningFactor->currentText() == ID::Binning4x4 ? 4 : 2;
    return [factor](const cv::Mat& input, cv::Mat& output) {
        binFrame(input, output, factor);
        return true;
    };
}

} // namespace zarvi
