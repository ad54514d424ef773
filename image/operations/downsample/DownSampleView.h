#pragma once

#include "image/ImageOperationView.h"

class QComboBox;
class QLabel;
class QSpinBox;

namespace zarvi {

/// The "Temporal Downsample" parameters ("Factor" and "Method" in "Downsample
/// Parameters"); the factor is checked against the first stack's frame count. The preview
/// shows the input frames: the operation combines frames, so one frame has no result of
/// its own. GUI thread.
class DownSampleView : public ImageOperationView
{
    Q_OBJECT

public:
    explicit DownSampleView(QWidget* parent = nullptr);

protected:
    void datasetsChanged() override;
    bool buildParameters(QVariantMap& parameters) override;

private:
    bool validate();

    QSpinBox* sb_factor;
    QComboBox* cb_method;
    QLabel* lb_factorValidation;
};

} // namespace zarvi
