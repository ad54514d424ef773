#pragma once

#include "datafile/ImageStackInfo.h"
#include "framework/AbstractOperationView.h"
#include "image/ImageFramePreview.h"

#include <vector>

class QFormLayout;
class QVBoxLayout;

namespace zarvi {

/// Common base of the image operation views: the operation's fields on the left, the
/// frame preview of the first selected stack on the right (ImageFramePreview, computed
/// off the GUI thread). It reads the stack's geometry when the datasets are set, so
/// that views can check their fields against it (each process checks every stack
/// again), and recomputes the preview when a view says its parameters changed. GUI
/// thread.
class ImageOperationView : public AbstractOperationView
{
    Q_OBJECT

public:
    ImageOperationView(const QString& operationName, QWidget* parent = nullptr);

    QSize openingSize() const override { return {1280, 760}; }
    QString selectionProblem() const override { return m_stackProblem; }
    ImageFramePreview* preview() const { return m_preview; }
    /// The first selected stack's geometry; zero sizes while unknown.
    const ImageStackInfo& stackInfo() const { return m_stackInfo; }
    /// The first selected stack's frame times, in seconds; empty while unknown.
    const std::vector<double>& stackTime() const { return m_stackTime; }

protected:
    /// Reads the first stack's geometry and times; views that override it call it first.
    void datasetsChanged() override;
    /// Where a view puts its fields, above a stretch.
    QVBoxLayout* parametersLayout() const { return m_parameters; }
    /// A titled group box added to the fields, for rows of declared parameters.
    QFormLayout* addParameterGroup(const QString& title, const QString& objectName);
    /// How the preview computes one frame with the fields as they are now; none shows
    /// the input frame alone. Everything the computation uses is copied into it.
    virtual ImageFramePreview::Computation previewComputation() const { return {}; }
    /// Recomputes the preview with the fields as they are now.
    void updatePreview();

private:
    QVBoxLayout* m_parameters;
    ImageFramePreview* m_preview;
    ImageStackInfo m_stackInfo;
    std::vector<double> m_stackTime;
    QString m_stackProblem;
};

} // namespace zarvi
