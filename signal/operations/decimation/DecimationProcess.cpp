#include "signal/operations/decimation/DecimationProcess.h"

#include "definitions/SignalOperationDefinitions.h"
#include "signal/operations/decimation/Decimation.h"

namespace zarvi {

using SD = SignalOperationDefinitions;

bool DecimationProcess::computeOperation()
{
    Decimation::Result result = Decimation::apply(m_input.values, m_input.time,
                                                  m_parameters.integer(SD::DecimationFactor), m_stepFeedback);
    if (result.outcome.isFailed())
        addError(result.outcome.error);
    if (!result.outcome.ok())
        return false;
    m_output.values = std::move(result.values);
    m_output.time = std::move(result.time);
    return true;
}

} // namespace zarvi
