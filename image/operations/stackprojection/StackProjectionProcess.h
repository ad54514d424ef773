#pragma once

#include "image/ImageOperationProcess.h"
#include "image/operations/stackprojection/StackProjection.h"

#include <optional>

namespace zarvi {

/// "Stack Projection": collapses each selected stack into one frame with StackProjection,
/// written in finishStack() at the time of the stack's first frame under
/// "StackProjectionImages". A run without a projection method is refused before the file
/// is opened. With "Concatenate Series" every selected stack is a series: their
/// projections go, in the order of the selection, into the one output stack of the
/// first stack instead of one output per stack. Worker thread.
class StackProjectionProcess : public ImageOperationProcess
{
    Q_OBJECT

public:
    using ImageOperationProcess::ImageOperationProcess;

protected:
    void runOperation() override;
    bool prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                      std::size_t& expectedFrames) override;
    bool computeOperation() override;
    bool finishStack() override;
    QString progressLabel() const override;
    bool continuesOutputAcrossInputs() const override;

private:
    StackProjection::Method m_method = StackProjection::Method::Maximum;
    std::optional<StackProjection> m_projection;
};

} // namespace zarvi
