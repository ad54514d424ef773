#include "image/ImageOperationViews.h"

#include "definitions/ImageOperationDefinitions.h"
#include "framework/OperationViewRegistry.h"
#include "image/operations/binning/BinningView.h"
#include "image/operations/crop/CropView.h"
#include "image/operations/dffimages/DFFImagesView.h"
#include "image/operations/discardframes/DiscardFramesView.h"
#include "image/operations/downsample/DownSampleView.h"
#include "image/operations/motioncorrection/MotionCorrectionView.h"
#include "image/operations/removebackground/RemoveBackgroundView.h"
#include "image/operations/roisignals/ROISignalsView.h"
#include "image/operations/splitimagesinseries/SplitImagesInSeriesView.h"
#include "image/operations/stackprojection/StackProjectionView.h"

namespace zarvi {

void registerImageOperationViews(OperationViewRegistry& registry)
{
    using ID = ImageOperationDefinitions;
    registry.add(ID::Binning, [] { return std::make_unique<BinningView>(); });
    registry.add(ID::TemporalDownsample, [] { return std::make_unique<DownSampleView>(); });
    registry.add(ID::StackProjection, [] { return std::make_unique<StackProjectionView>(); });
    registry.add(ID::Crop, [] { return std::make_unique<CropView>(); });
    registry.add(ID::DiscardFrames, [] { return std::make_unique<DiscardFramesView>(); });
    registry.add(ID::SplitImagesInSeries, [] { return std::make_unique<SplitImagesInSeriesView>(); });
    registry.add(ID::RemoveBackground, [] { return std::make_unique<RemoveBackgroundView>(); });
    registry.add(ID::ROISignalsOperation, [] { return std::make_unique<ROISignalsView>(); });
    registry.add(ID::ImagesDeltaF, [] { return std::make_unique<DFFImagesView>(); });
    registry.add(ID::MotionCorrection, [] { return std::make_unique<MotionCorrectionView>(); });
}

} // namespace zarvi
