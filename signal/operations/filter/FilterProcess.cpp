#include "signal/operations/filter/FilterProcess.h"

#include "definitions/SignalOperationDefinitions.h"
#include "signal/operations/filter/FilterDesign.h"
#include "signal/operations/filter/ZeroPhaseFilter.h"

namespace zarvi {

using SD = SignalOperationDefinitions;

bool FilterProcess::computeOperation()
{
    const QString name = m_parameters.text(SD::FilterName);
    if (!name.isEmpty() && name != SD::Butterworth) {
        addError(SD::unknownFilterNameMessage().arg(name));
        return false;
    }
    FilterDesign::Result design = FilterDesign::design(
        m_parameters.text(SD::FilterType), FilterDesign::cutoffsFromParameters(m_parameters), m_inputRate);
    if (!design.outcome.ok()) {
        addError(design.outcome.error);
        return false;
    }
    // The input is not needed afterwards (only its unit), so it is filtered where it lies.
    m_output.values = std::move(m_input.values);
    const KernelOutcome outcome = ZeroPhaseFilter::apply(design.filter, m_output.values, m_stepFeedback);
    if (outcome.isFailed())
        addError(outcome.error);
    return outcome.ok();
}

} // namespace zarvi
