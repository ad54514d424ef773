#pragma once

#include "image/ImageOperationView.h"

class QComboBox;

namespace zarvi {

/// The "Binning" parameters ("Binning Factor" in "Binning Parameters") with the binned
/// frame as preview. GUI thread.
class BinningView : public ImageOperationView
{
    Q_OBJECT

public:
    explicit BinningView(QWidget* parent = nullptr);

protected:
    bool buildParameters(QVariantMap& parameters) override;
    ImageFramePreview::Computation previewComputation() const override;

private:
    QComboBox* cb_binningFactor;
};

} // namespace zarvi
