#pragma once

#include "image/ImageOperationView.h"

class QComboBox;
class QLabel;

namespace zarvi {

class RegionHandler;

/// The "Remove Background" parameters: under "Draw an ROI to Calculate Background", the
/// shape of the background region ("Rectangle", "Circle", "Polygon", "Freehand") and the
/// region itself, drawn on the preview's input frame with a RegionHandler. The drawn
/// region is `BackgroundCoordinates` (as JSON without a name); without a valid one Run is
/// refused beside the shape with the operation's message. The preview is the frame with
/// the background of the current region removed. The region of the last run comes back
/// once the first frame is shown. GUI thread.
class RemoveBackgroundView : public ImageOperationView
{
    Q_OBJECT

public:
    explicit RemoveBackgroundView(QWidget* parent = nullptr);

    RegionHandler* regionHandler() const { return m_region; }

protected:
    bool buildParameters(QVariantMap& parameters) override;
    ImageFramePreview::Computation previewComputation() const override;

private:
    void onRegionChanged();
    /// Draws the remembered region, once the frame (and so the image size) is known.
    void restoreRegion();
    /// The drawn region as BackgroundCoordinates; empty when there is no usable region.
    QString coordinates() const;

    QComboBox* cb_shape;
    QLabel* lb_backgroundValidation;
    RegionHandler* m_region;
    bool m_restored = false;
};

} // namespace zarvi
