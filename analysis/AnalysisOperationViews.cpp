#include "analysis/AnalysisOperationViews.h"

#include "analysis/operations/perievents/PerieventsView.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "framework/OperationViewRegistry.h"

namespace zarvi {

void registerAnalysisOperationViews(OperationViewRegistry& registry)
{
    registry.add(AnalysisOperationDefinitions::Perievents, [] { return std::make_unique<PerieventsView>(); });
}

} // namespace zarvi
