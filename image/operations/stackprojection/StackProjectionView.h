#pragma once

#include "image/ImageOperationView.h"

class QCheckBox;
class QComboBox;

namespace zarvi {

/// The "Stack Projection" parameters ("Method" and "Concatenate Series" in "Stack
/// Projection Parameters"). The preview shows the input frames: a projection needs every
/// frame of the stack, so one frame has no result of its own. GUI thread.
class StackProjectionView : public ImageOperationView
{
    Q_OBJECT

public:
    explicit StackProjectionView(QWidget* parent = nullptr);

protected:
    bool buildParameters(QVariantMap& parameters) override;

private:
    QComboBox* cb_projectionMethod;
    QCheckBox* cb_concatenateSeries;
};

} // namespace zarvi
