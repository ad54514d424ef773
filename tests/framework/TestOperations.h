#pragma once

#include "datafile/SignalDataset.h"
#include "definitions/FileDefinitions.h"
#include "framework/AbstractOperationProcess.h"
#include "framework/OperationRegistry.h"
#include "framework/RunTransaction.h"

#include <QThread>

namespace zarvi::test {

inline const QString slowOperation = QStringLiteral("Test Slow Scale");

/// An operation built on the framework alone, for its tests: scales each signal by
/// "Factor", slowly (a pause every 1 % of the samples, so a cancel can land in the
/// middle), and fails with a set text when "FailWith" is given.
class SlowScaleProcess : public AbstractOperationProcess
{
protected:
    void runOperation() override
    {
        RunTransaction run;
        if (!openRun(run, FileDefinitions::DataProcessed, FileDefinitions::Signals, m_sourceDatapaths))
            return;
        runInputs(run, static_cast<int>(m_sourceDatapaths.size()), [&](int i, Feedback* step) {
            QString error;
            m_step = step;
            if (!SignalDataset::read(run.file(), m_sourceDatapaths[i], m_input, error))
                addError(error);
            if (!m_errors.isEmpty() || !computeOperation())
                return false;
            const QString written = run.writeSignal(m_sourceDatapaths[i], m_output, error);
            if (written.isEmpty())
                addError(error);
            addOutput(written);
            return !written.isEmpty();
        });
    }

    bool computeOperation() override
    {
        const QString failure = m_parameters.text(QStringLiteral("FailWith"));
        if (!failure.isEmpty()) {
            addError(failure);
            return false;
        }
        const double factor = m_parameters.number(QStringLiteral("Factor"), 1.0);
        const int pauseMs = m_parameters.integer(QStringLiteral("PauseMs"));
        m_output = Signal{m_input.time, {}, m_input.unit};
        m_output.values.resize(m_input.values.size());
        ProgressTracker progress(m_step, m_input.values.size());
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

private:
    Signal m_input;
    Signal m_output;
    Feedback* m_step = nullptr;
};

inline void registerTestOperations()
{
    using P = OperationParameter;
    OperationRegistry::instance().add(
        {slowOperation,
         OperationFamily::Signal,
         QStringLiteral("Scales signals slowly, for the framework's tests."),
         QStringLiteral("ScaledSignals"),
         QStringLiteral("DataProcessed/<device>/Signals/<series>/ScaledSignals<K>"),
         {P::number(QStringLiteral("Factor"), QStringLiteral("Factor")),
          P::integer(QStringLiteral("PauseMs"), QStringLiteral("Pause")),
          P::text(QStringLiteral("FailWith"), QStringLiteral("Failure"))},
         [] { return std::make_unique<SlowScaleProcess>(); }});
}

} // namespace zarvi::test
