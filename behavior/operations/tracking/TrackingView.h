#pragma once

#include "behavior/operations/tracking/FrameTracking.h"
#include "framework/AbstractOperationView.h"

class QAbstractSpinBox;
class QCheckBox;
class QDoubleSpinBox;
class QFormLayout;
class QLabel;
class QSpinBox;
class QToolButton;

namespace zarvi {

class TrackingPreview;

/// The "AnimalTracking" parameters beside their preview: the contrast warning; the
/// thresholds ("Convert to Grayscale", the Hue, Saturation and Value ranges with their
/// scales, "Reset Parameters"); the video segment; outliers, interpolation and
/// smoothing, the animal size being filled from the preview's estimate. The preview
/// (TrackingPreview) follows every threshold change off the GUI thread. The link is read
/// when the datasets are set; a link whose video cannot be found is refused with the
/// reason. GUI thread.
class TrackingView : public AbstractOperationView
{
    Q_OBJECT

public:
    explicit TrackingView(QWidget* parent = nullptr);

    QSize openingSize() const override { return {1280, 760}; }
    QString selectionProblem() const override { return m_linkProblem; }
    TrackingPreview* preview() const { return m_preview; }

protected:
    bool buildParameters(QVariantMap& parameters) override;
    void datasetsChanged() override;

private:
    /// A row of two bound fields of a threshold range.
    void addRangeRow(QFormLayout* form, const QString& key, const QString& label, const QString& hint,
                     QAbstractSpinBox* low, QAbstractSpinBox* high);
    /// Fills the threshold ranges with the bounds of the last run (`remembered`) or the
    /// declared defaults ("Reset Parameters"), and previews them once.
    void setRanges(bool remembered);
    /// The thresholds as the fields say now, as the process would read them.
    ThresholdSettings thresholds() const;
    void updateStates();

    QCheckBox* cb_convertToGrayscale;
    QSpinBox* sb_hueLow;
    QSpinBox* sb_hueHigh;
    QDoubleSpinBox* dsb_saturationLow;
    QDoubleSpinBox* dsb_saturationHigh;
    QDoubleSpinBox* dsb_valueLow;
    QDoubleSpinBox* dsb_valueHigh;
    QToolButton* tb_resetParameters;
    QSpinBox* sb_firstFrame;
    QSpinBox* sb_lastFrame;
    QCheckBox* cb_detectOutliers;
    QCheckBox* cb_interpolate;
    QSpinBox* sb_animalSize;
    QCheckBox* cb_smoothCoordinates;
    QSpinBox* sb_smoothWindow;
    QLabel* lb_validation;
    TrackingPreview* m_preview;
    QString m_linkProblem;
};

} // namespace zarvi
