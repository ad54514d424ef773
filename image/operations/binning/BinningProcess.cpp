#include "image/operations/binning/BinningProcess.h"

#include "definitions/ImageOperationDefinitions.h"
#include "image/operations/binning/FrameBinning.h"

namespace zarvi {

using ID = ImageOperationDefinitions;

bool BinningProcess::prepareStack(const ImageStackInfo& input, ImageStackInfo& output,
                                  std::size_t& expectedFrames)
{
    m_factor = m_parameters.text(ID::BinningFactor) == ID::Binning4x4 ? 4 : 2;
    const cv::Size size = binnedSize({input.width, input.height}, m_factor);
    if (size.width < 1 || size.height < 1) {
        addError(tr("The images of <b>%1</b> (%2 x %3) are too small for %4 binning.")
                     .arg(m_inputPath)
                     .arg(input.width)
                     .arg(input.height)
                     .arg(m_parameters.text(ID::BinningFactor)));
        return false;
    }
    output = input;
    output.width = size.width;
    output.height = size.height;
    expectedFrames = input.frames;
    return true;
}

bool BinningProcess::computeOperation()
{
    binFrame(m_frame, m_binned, m_factor);
    return writeFrame(m_binned, m_frameTime);
}

QString BinningProcess::progressLabel() const
{
    return ID::binningProgress();
}

} // namespace zarvi
