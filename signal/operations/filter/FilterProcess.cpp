#include "signal/operations/filter/FilterProcess.h"

#include "definitions/SignalOperationDefinitions.h"
#include "signal/operations/filter/FilterDesign.h"
#include "signal/operations/filter/ZeroPhaseFilter.h"

namespace zarvi {

using SD = SignalOperationDefinitions;

FilterProcess::FilterProcess() : SignalOperationProcess(SD::FilteredSignals) {}

bool FilterProcess::computeOperation()
{
    const QString type = m_parameters.value(SD::FilterType).toString();
    if (type.isEmpty()) {
        addError(SD::parameterMissingMessage().arg(SD::FilterType));
        return false;
    }
    const QString name = m_parameters.value(SD::FilterName).toString();
    if (!name.isEmpty() && name != SD::Butterworth) {
        addError(SD::unknownFilterNameMessage().arg(name));
        return false;
    }
    // An empty cut-off is one that was not given: it must not enter the list as 0 Hz.
    QVariantMap given;
    for (const QString& key : {SD::LowCutoffFrequency, SD::HighCutoffFrequency}) {
        if (!m_parameters.value(key).toString().isEmpty())
            given.insert(key, m_parameters.value(key));
    }
    FilterDesign::Result design = FilterDesign::design(type, FilterDesign::cutoffsFromParameters(given),
                                                       FilterDesign::RateFromTime, m_input.time);
    if (!design.outcome.ok()) {
        addError(design.outcome.error);
        return false;
    }
    // The input is not needed afterwards (only its unit), so it is filtered where it lies.
    m_output.values = std::move(m_input.values);
    m_output.time = std::move(m_input.time);
    const KernelOutcome outcome = ZeroPhaseFilter::apply(design.filter, m_output.values, m_stepFeedback);
    if (outcome.isFailed())
        addError(outcome.error);
    return outcome.ok();
}

} // namespace zarvi
