#include "image/operations/stackprojection/StackProjectionProcess.h"

#include "definitions/ImageOperationDefinitions.h"

namespace zarvi {

using ID = ImageOperationDefinitions;

namespace {

/// The method named by `name`; nothing when no method is chosen (the registry admits
/// only the five names or none).
std::optional<StackProjection::Method> methodNamed(const QString& name)
{
    if (name == ID::Maximum)
        return StackProjection::Method::Maximum;
    if (name == ID::Minimum)
        return StackProjection::Method::Minimum;
    if (name == ID::Mean)
        return StackProjection::Method::Mean;
    if (name == ID::Sum)
        return StackProjection::Method::Sum;
    if (name == ID::StandardDeviation)
        return StackProjection::Method::StandardDeviation;
    return std::nullopt;
}

} // namespace

void StackProjectionProcess::runOperation()
{
    const std::optional<StackProjection::Method> method =
        methodNamed(m_parameters.text(ID::ProjectionMethod));
    if (!method) {
        addError(ID::projectionMethodMessage());
        return;
    }
    m_method = *method;
    ImageOperationProcess::runOperation();
}

bool StackProjectionProcess::prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                                          std::size_t& expectedFrames)
{
    m_projection.emplace(m_method);
    output = input;
    // A sum may use all 16 bits, whatever the camera's depth; the viewers scale by BitCount.
    if (m_method == StackProjection::Method::Sum)
        output.bitCount = 16;
    expectedFrames = continuesOutputAcrossInputs() ? static_cast<std::size_t>(m_sourceDatapaths.size()) : 1;
    return true;
}

bool StackProjectionProcess::computeOperation()
{
    m_projection->add(m_frame);
    return true;
}

bool StackProjectionProcess::finishStack()
{
    return writeFrame(m_projection->result(), m_inputTime.front());
}

QString StackProjectionProcess::progressLabel() const
{
    return ID::projectingProgress();
}

bool StackProjectionProcess::continuesOutputAcrossInputs() const
{
    return m_parameters.flag(ID::ConcatenateSeries);
}

} // namespace zarvi
