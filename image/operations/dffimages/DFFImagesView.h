#pragma once

#include "image/ImageOperationView.h"

#include <memory>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QToolButton;

namespace zarvi {

class BackgroundJob;
class FrameDeltaF;

/// The "Images deltaF/F" parameters in "dF/F Parameters": "Remove Global Temporal
/// Variations ", and the dark-frame selector, a data file (any, chosen with a file
/// dialog; "No dark frame selected" while there is none) and one of its image stacks,
/// checked against the size of the first selected stack, with the warning label under
/// it. The ΔF/F of a frame needs F0, the mean over the whole stack: reading a stack of
/// many gigabytes takes minutes and holds the file's lock, so F0 is computed only when
/// the user presses "Preview", in a background job behind the cancellable "Preview
/// Progress" dialog. The preview then shows the ΔF/F of any frame at once, until the
/// option, the dark frame or the stack changes. GUI thread.
class DFFImagesView : public ImageOperationView
{
    Q_OBJECT

public:
    explicit DFFImagesView(QWidget* parent = nullptr);
    ~DFFImagesView() override;

    /// Chooses the dark frame's data file, as the file dialog does, and lists its image
    /// stacks (the first is selected); an empty path chooses no dark frame.
    void setDarkframeFile(const QString& filepath);
    /// Computes F0 with the fields as they are now, then previews the ΔF/F.
    void startPreview();
    BackgroundJob* previewJob() const { return m_previewJob.get(); }

protected:
    void datasetsChanged() override;
    bool buildParameters(QVariantMap& parameters) override;
    ImageFramePreview::Computation previewComputation() const override;

private:
    /// Checks the chosen dark frame against the stack; false with the reason shown.
    bool validateDarkframe();
    /// A field changed: the F0 computed so far no longer applies.
    void parametersChanged();
    void onChooseDarkframeClicked();
    void onPreviewFinished(bool canceled);

    QCheckBox* cb_removeTemporalVariations;
    QLabel* lb_darkframeFile;
    QToolButton* tb_darkframeFile;
    QToolButton* tb_clearDarkframe;
    QComboBox* cb_darkframeDataset;
    QLabel* lb_darkframeValidation;
    QLabel* lb_darkframeWarning;
    QPushButton* pb_preview;
    QLabel* lb_previewStatus;
    QString m_darkframeFile;
    std::unique_ptr<BackgroundJob> m_previewJob;
    /// F0 for the fields as they were when "Preview" was last pressed; null when stale.
    std::shared_ptr<const FrameDeltaF> m_deltaF;
    /// Counts the field changes, so that a result computed for older fields is dropped.
    int m_generation = 0;
    struct PreviewResult;
    std::shared_ptr<PreviewResult> m_result;
};

} // namespace zarvi
