#include "framework/OperationViewFactory.h"

#include "analysis/operations/perievents/PerieventsView.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/SignalOperationDefinitions.h"
#include "framework/AbstractOperationView.h"
#include "signal/operations/decimation/DecimationView.h"
#include "signal/operations/filter/FilterView.h"
#include "signal/operations/photometry/PhotometryDeltaFView.h"
#include "signal/operations/smooth/SmoothView.h"

#include <functional>
#include <map>

namespace zarvi {

std::unique_ptr<AbstractOperationView> OperationViewFactory::create(const QString& operationName)
{
    using SD = SignalOperationDefinitions;
    using Maker = std::function<std::unique_ptr<AbstractOperationView>()>;
    static const std::map<QString, Maker> makers{
        {SD::Filter, [] { return std::make_unique<FilterView>(); }},
        {SD::SmoothSignals, [] { return std::make_unique<SmoothView>(); }},
        {SD::Decimation, [] { return std::make_unique<DecimationView>(); }},
        {SD::PhotometryDeltaF, [] { return std::make_unique<PhotometryDeltaFView>(); }},
        {AnalysisOperationDefinitions::Perievents, [] { return std::make_unique<PerieventsView>(); }},
    };
    const auto it = makers.find(operationName);
    return it == makers.end() ? nullptr : it->second();
}

} // namespace zarvi
