#pragma once

#include "image/ImageOperationProcess.h"
#include "image/operations/roisignals/RoiSignalExtraction.h"

#include <optional>
#include <vector>

namespace zarvi {

/// "ROI Signals": one signal per cell ROI stored with each selected stack (RoiStore),
/// the mean of the ROI's pixels in every frame (RoiSignalExtraction, one pass for all
/// ROIs), on the stack's `Time`. `ROINames` chooses the ROIs by name; without it every
/// ROI of an area shape (Rectangle, Circle, Polygon, Freehand) is used. The signals are
/// small, so they are kept until the stack's last frame and then written through the run
/// under "DataProcessed/<device>/ROISignals/<series>/ROISignals<K>/<ROI name>/{Signal,
/// Time}", the `Signal` dataset carrying the ROI's `Username`, `Coordinates` (int32 n x 2)
/// and `Shape` besides the run's parameters. A stack without cell ROIs, an unknown name,
/// a name that is not a cell or an ROI outside the frames refuses the run before anything
/// is written. Worker thread.
class ROISignalsProcess : public ImageOperationProcess
{
    Q_OBJECT

public:
    using ImageOperationProcess::ImageOperationProcess;

protected:
    bool prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                      std::size_t& expectedFrames) override;
    bool computeOperation() override;
    bool finishStack() override;
    QString progressLabel() const override;
    QString outputKind() const override;

private:
    /// The stored ROIs that `ROINames` (or its absence) chooses; false after adding an error.
    bool chooseRois(const std::vector<RoiShape>& stored, std::vector<RoiShape>& chosen);
    /// Writes the ROI's name, points and shape on its signal's values dataset.
    bool recordRoi(const QString& valuesPath, const RoiShape& roi);

    std::vector<RoiShape> m_rois;
    std::optional<RoiSignalExtraction> m_extraction;
};

} // namespace zarvi
