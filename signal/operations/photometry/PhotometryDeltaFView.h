#pragma once

#include "signal/SignalOperationView.h"
#include "signal/operations/photometry/PhotometryDeltaF.h"

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QSpinBox;
class QToolButton;

namespace zarvi {

class PhotometryPreviewPlots;
class BackgroundJob;

/// Parameters of "Photometry deltaF/F": the two sensor names (offered from the
/// selected signals' sensors), one check box per pre-processing stage (an unchecked
/// stage sends no key), the fit's residual threshold, and a preview of the whole
/// chain on the pair of the biosensor signal chosen for it, computed off the GUI
/// thread, which says the fit's inlier fraction and proposes a threshold on the
/// signals' scale. GUI thread.
class PhotometryDeltaFView : public SignalOperationView
{
    Q_OBJECT

public:
    explicit PhotometryDeltaFView(QWidget* parent = nullptr);
    ~PhotometryDeltaFView() override;
    /// Room for the stages beside three readable preview plots.
    QSize openingSize() const override { return {1300, 880}; }
    /// A recording needs signals of two sensors, selected or beside the selected ones.
    QString selectionProblem() const override;

    /// Computes and draws the preview of the chosen pair; false when it could not
    /// start (the reason is shown in a message).
    bool requestPreview();
    PhotometryPreviewPlots* previewPlots() const { return m_plots; }
    BackgroundJob* previewJob() const { return m_preview.get(); }

signals:
    /// After a preview has ended, drawn or not.
    void previewFinished();

protected:
    bool buildParameters(QVariantMap& parameters) override;
    void datasetsChanged() override;

private:
    struct PreviewOutput;

    QWidget* buildStages();
    /// Fills the biosensor signals that can be previewed for the chosen sensor names.
    void updatePreviewChoices();
    /// Shows the smoothing cut-off note when the filter cannot run at the decimated rate.
    void updateSmoothingNote();
    /// The keys of the checked stages.
    QVariantMap stageParameters() const;
    bool namesAreUsable();
    /// Sets the stages and fields as the operation last ran from a dialog, if it did.
    void restoreLastRun();
    /// Draws the preview's fit, says its inlier fraction and keeps the threshold proposed from it.
    void showFit(const PhotometryDeltaF::Result& result, bool standardized);

    QComboBox* m_isosbesticName;
    QComboBox* m_biosensorName;
    QCheckBox* m_discardStartCheck;
    QDoubleSpinBox* m_discardStart;
    QCheckBox* m_discardEndCheck;
    QDoubleSpinBox* m_discardEnd;
    QCheckBox* m_decimationCheck;
    QSpinBox* m_decimationFactor;
    QCheckBox* m_smoothCheck;
    QComboBox* m_smoothMethod;
    QDoubleSpinBox* m_smoothTimeFrame;
    QDoubleSpinBox* m_smoothFrequency;
    QLabel* m_smoothNote;
    QCheckBox* m_slopeCheck;
    QComboBox* m_slopeMethod;
    QSpinBox* m_slopeLambda;
    QDoubleSpinBox* m_slopeRatio;
    QDoubleSpinBox* m_slopeTimeWindow;
    QSpinBox* m_slopeOrder;
    QCheckBox* m_standardizeCheck;
    QComboBox* m_standardizeMethod;
    QDoubleSpinBox* m_residualThreshold;
    QToolButton* m_proposeThreshold;
    QLabel* m_inliers;
    double m_proposedThreshold = 0.0;
    QComboBox* m_previewSignal;
    PhotometryPreviewPlots* m_plots;
    std::unique_ptr<BackgroundJob> m_preview;
    std::shared_ptr<PreviewOutput> m_previewOutput;
};

} // namespace zarvi
