#pragma once

#include "image/ImageOperationView.h"
#include "image/operations/motioncorrection/MotionReference.h"

#include <memory>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QToolButton;

namespace zarvi {

class BackgroundJob;
class MotionShiftPlot;
class ZarviGraphicsView;

/// The "Motion Correction" parameters ("Motion Correction Parameters": where the
/// reference comes from, its file, dataset and frame, "Load Reference Frame" and "Apply
/// X-Y shifts to the second sensor"), the loaded reference frame, and "Alignment Shifts":
/// the x and y shifts against time of a range of frames (computed off the GUI thread on
/// request) or, after a run, the shifts the run kept. The frame preview shows the frame
/// moved back against the loaded reference. GUI thread.
class MotionCorrectionView : public ImageOperationView
{
    Q_OBJECT

public:
    explicit MotionCorrectionView(QWidget* parent = nullptr);
    ~MotionCorrectionView() override;

    /// The reference the preview registers against; null until one is loaded.
    const std::shared_ptr<const MotionReference>& reference() const { return m_reference; }
    MotionShiftPlot* shiftPlot() const { return m_shiftPlot; }
    /// Reads and prepares the chosen reference frame off the GUI thread, then shows it
    /// and recomputes the preview ("Load Reference Frame").
    void loadReferenceFrame();
    /// Registers the frames of the chosen range off the GUI thread and plots their shifts.
    void previewShifts();
    /// True while the reference or the shifts are being computed.
    bool isComputing() const;

signals:
    /// A "Load Reference Frame" has ended (the reference is loaded or its problem shown).
    void referenceFrameLoaded();
    /// The plot shows new shifts, or why there are none.
    void shiftsShown();

protected:
    void datasetsChanged() override;
    bool buildParameters(QVariantMap& parameters) override;
    ImageFramePreview::Computation previewComputation() const override;

private:
    /// Which frame of which dataset of which file the fields name as the reference.
    struct ReferenceChoice
    {
        QString filepath;
        QString datapath;
        std::size_t frame = 0;
    };
    struct LoadedReference;
    struct PreviewedShifts;

    bool isExternal() const;
    ReferenceChoice referenceChoice() const;
    /// Lists the image stacks of the reference file in the dataset choice.
    void fillReferenceDatasets();
    void updateReferenceFrameRange();
    /// The fields naming the reference changed: the loaded reference no longer applies.
    void onReferenceChanged();
    void onReferenceLoaded();
    void onShiftsPreviewed();
    /// After a run: the shifts kept beside the first output stack.
    void showRunShifts(const QString& filepath, const QStringList& datapaths, const QStringList& errors);
    bool validate();

    QComboBox* cb_referenceSource;
    QWidget* w_referenceFile;
    QLineEdit* le_referenceFile;
    QToolButton* tb_browseReferenceFile;
    QComboBox* cb_referenceDataset;
    QSpinBox* sb_referenceFrame;
    QPushButton* pb_loadReferenceFrame;
    QCheckBox* cb_applyShiftsToSensor2;
    QLabel* lb_validation;
    QFormLayout* m_form;
    ZarviGraphicsView* gv_reference;
    QLabel* lb_reference;
    QSpinBox* sb_firstFrame;
    QSpinBox* sb_lastFrame;
    QPushButton* pb_previewShifts;
    QLabel* lb_shifts;
    MotionShiftPlot* m_shiftPlot;
    std::unique_ptr<BackgroundJob> m_referenceJob;
    std::unique_ptr<BackgroundJob> m_shiftJob;
    std::shared_ptr<LoadedReference> m_loaded;
    bool m_referencePending = false;
    std::shared_ptr<PreviewedShifts> m_previewed;
    std::shared_ptr<const MotionReference> m_reference;
};

} // namespace zarvi
