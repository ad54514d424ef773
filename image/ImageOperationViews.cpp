#include "image/ImageOperationViews.h"

#include "definitions/ImageOperationDefinitions.h"
#include "framework/OperationViewRegistry.h"
#include "image/operations/binning/BinningView.h"
#include "image/operations/downsample/DownSampleView.h"
#include "image/operations/motioncorrection/MotionCorrectionView.h"

namespace zarvi {

void registerImageOperationViews(OperationViewRegistry& registry)
{
    using ID = ImageOperationDefinitions;
    registry.add(ID::Binning, [] { return std::make_unique<BinningView>(); });
    registry.add(ID::TemporalDownsample, [] { return std::make_unique<DownSampleView>(); });
    registry.add(ID::MotionCorrection, [] { return std::make_unique<MotionCorrectionView>(); });
}

} // namespace zarvi
