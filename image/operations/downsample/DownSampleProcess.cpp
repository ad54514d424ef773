#include "image/operations/downsample/DownSampleProcess.h"

#include "definitions/ImageOperationDefinitions.h"

namespace zarvi {

using ID = ImageOperationDefinitions;

namespace {

TemporalDownsample::Method methodNamed(const QString& name)
{
    // The registry admits only the five names; Skip is the first of them.
    if (name == ID::Mean)
        return TemporalDownsample::Method::Mean;
    if (name == ID::Sum)
        return TemporalDownsample::Method::Sum;
    if (name == ID::Minimum)
        return TemporalDownsample::Method::Minimum;
    if (name == ID::Maximum)
        return TemporalDownsample::Method::Maximum;
    return TemporalDownsample::Method::Skip;
}

} // namespace

bool DownSampleProcess::prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                                     std::size_t& expectedFrames)
{
    const int factor = m_parameters.integer(ID::Factor, 1);
    if (TemporalDownsample::isFactorTooLarge(input.frames, factor)) {
        addError(ID::factorTooLargeMessage().arg(factor).arg(m_inputPath).arg(input.frames));
        return false;
    }
    const TemporalDownsample::Method method = methodNamed(m_parameters.text(ID::Method));
    m_downsample.emplace(method, factor);
    output = input;
    // Sums may use all 16 bits, whatever the camera's depth; the viewers scale by BitCount.
    if (method == TemporalDownsample::Method::Sum)
        output.bitCount = 16;
    expectedFrames = TemporalDownsample::outputFrames(input.frames, factor);
    return true;
}

bool DownSampleProcess::wantsFrame(std::size_t index) const
{
    return m_downsample->wantsFrame(index);
}

bool DownSampleProcess::computeOperation()
{
    return !m_downsample->add(m_frame, m_frameTime) ||
           writeFrame(m_downsample->frame(), m_downsample->time());
}

bool DownSampleProcess::finishStack()
{
    return !m_downsample->finish() || writeFrame(m_downsample->frame(), m_downsample->time());
}

QString DownSampleProcess::progressLabel() const
{
    return ID::downsamplingProgress();
}

} // namespace zarvi
