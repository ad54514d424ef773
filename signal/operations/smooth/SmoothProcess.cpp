#include "signal/operations/smooth/SmoothProcess.h"

#include "definitions/SignalOperationDefinitions.h"
#include "signal/operations/smooth/Smoothing.h"

namespace zarvi {

using SD = SignalOperationDefinitions;

bool SmoothProcess::computeOperation()
{
    const Smoothing::Config config{m_parameters.text(SD::SmoothMethod),
                                   m_parameters.number(SD::SmoothTimeFrame),
                                   m_parameters.number(SD::SmoothFrequency)};
    m_output.values = std::move(m_input.values);
    const KernelOutcome outcome = Smoothing::apply(config, m_output.values, m_inputRate, m_stepFeedback);
    if (outcome.isFailed())
        addError(outcome.error);
    return outcome.ok();
}

} // namespace zarvi
