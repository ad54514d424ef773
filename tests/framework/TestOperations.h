#pragma once

#include "framework/OperationRegistry.h"
#include "signal/SignalOperationProcess.h"

#include <QThread>

namespace zarvi::test {

inline const QString slowOperation = QStringLiteral("Test Slow Scale");

/// A signal operation for the framework tests: scales the signal by "Factor",
/// slowly (a pause every 1 % of the samples, so a cancel can land in the middle),
/// and fails with a set text when "FailWith" is given.
class SlowScaleProcess : public SignalOperationProcess
{
public:
    SlowScaleProcess() : SignalOperationProcess(QStringLiteral("ScaledSignals")) {}

protected:
    bool computeOperation() override
    {
        const QString failure = m_parameters.value(QStringLiteral("FailWith")).toString();
        if (!failure.isEmpty()) {
            addError(failure);
            return false;
        }
        const double factor = m_parameters.value(QStringLiteral("Factor"), 1.0).toDouble();
        const int pauseMs = m_parameters.value(QStringLiteral("PauseMs"), 0).toInt();
        m_output.time = m_input.time;
        m_output.values.resize(m_input.values.size());
        ProgressTracker progress(m_stepFeedback, m_input.values.size());
        const std::size_t step = std::max<std::size_t>(1, m_input.values.size() / 100);
        for (std::size_t i = 0; i < m_input.values.size(); ++i) {
            m_output.values[i] = factor * m_input.values[i];
            if (i % step == 0) {
                if (progress.isCanceled())
                    return false;
                progress.update(i);
                QThread::msleep(static_cast<unsigned long>(pauseMs));
            }
        }
        return true;
    }
};

inline void registerTestOperations()
{
    OperationRegistry& registry = OperationRegistry::instance();
    if (registry.find(slowOperation))
        return;
    registry.add({slowOperation,
                  OperationFamily::Signal,
                  {{QStringLiteral("Factor"), ParameterType::Double},
                   {QStringLiteral("PauseMs"), ParameterType::Int},
                   {QStringLiteral("FailWith"), ParameterType::String}},
                  [] { return std::make_unique<SlowScaleProcess>(); }});
}

} // namespace zarvi::test
