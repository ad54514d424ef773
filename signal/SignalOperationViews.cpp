#include "signal/SignalOperationViews.h"

#include "definitions/SignalOperationDefinitions.h"
#include "framework/OperationViewRegistry.h"
#include "signal/operations/decimation/DecimationView.h"
#include "signal/operations/filter/FilterView.h"
#include "signal/operations/photometry/PhotometryDeltaFView.h"
#include "signal/operations/smooth/SmoothView.h"

namespace zarvi {

void registerSignalOperationViews(OperationViewRegistry& registry)
{
    using SD = SignalOperationDefinitions;
    registry.add(SD::Filter, [] { return std::make_unique<FilterView>(); });
    registry.add(SD::SmoothSignals, [] { return std::make_unique<SmoothView>(); });
    registry.add(SD::Decimation, [] { return std::make_unique<DecimationView>(); });
    registry.add(SD::PhotometryDeltaF, [] { return std::make_unique<PhotometryDeltaFView>(); });
}

} // namespace zarvi
