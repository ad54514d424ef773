#include "image/ImageOperationViews.h"

#include "definitions/ImageOperationDefinitions.h"
#include "framework/OperationViewRegistry.h"
#include "image/operations/binning/BinningView.h"
#include "image/operations/dffimages/DFFImagesView.h"
#include "image/operations/downsample/DownSampleView.h"

namespace zarvi {

void registerImageOperationViews(OperationViewRegistry& registry)
{
    using ID = ImageOperationDefinitions;
    registry.add(ID::Binning, [] { return std::make_unique<BinningView>(); });
    registry.add(ID::TemporalDownsample, [] { return std::make_unique<DownSampleView>(); });
    registry.add(ID::ImagesDeltaF, [] { return std::make_unique<DFFImagesView>(); });
}

} // namespace zarvi
