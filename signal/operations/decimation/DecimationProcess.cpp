#include "signal/operations/decimation/DecimationProcess.h"

#include "definitions/SignalOperationDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "signal/operations/decimation/Decimation.h"

namespace zarvi {

using SD = SignalOperationDefinitions;

DecimationProcess::DecimationProcess() : SignalOperationProcess(SD::DecimatedSignals) {}

bool DecimationProcess::computeOperation()
{
    const QVariant factor = m_parameters.value(SD::DecimationFactor);
    if (!factor.isValid() || factor.toString().isEmpty()) {
        addError(ZarviMainDefinitions::parameterMissingMessage().arg(SD::DecimationFactor));
        return false;
    }
    Decimation::Result result = Decimation::apply(m_input.values, m_input.time, factor.toInt(), m_stepFeedback);
    if (result.outcome.isFailed())
        addError(result.outcome.error);
    if (!result.outcome.ok())
        return false;
    m_output.values = std::move(result.values);
    m_output.time = std::move(result.time);
    return true;
}

} // namespace zarvi
