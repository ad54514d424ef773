#include "signal/SignalOperationProcess.h"

#include "definitions/FileDefinitions.h"
#include "framework/RunTransaction.h"
#include "signal/operations/SampleRate.h"

namespace zarvi {

QList<QStringList> SignalOperationProcess::inputsOf(HDF5Manager_V6&)
{
    QList<QStringList> inputs;
    for (const QString& path : std::as_const(m_sourceDatapaths))
        inputs << QStringList{path};
    return inputs;
}

void SignalOperationProcess::runOperation()
{
    RunTransaction run;
    if (!openRun(run, FileDefinitions::DataProcessed, FileDefinitions::Signals, m_sourceDatapaths))
        return;
    const QList<QStringList> inputs = inputsOf(run.file());
    if (inputs.isEmpty())
        return;
    QStringList sources;
    for (const QStringList& input : inputs)
        sources << input;
    run.setSources(sources);
    runInputs(run, static_cast<int>(inputs.size()), [&](int i, Feedback* step) {
        m_stepFeedback = step;
        const QStringList& paths = inputs[i];
        m_otherInputs.assign(static_cast<std::size_t>(paths.size() - 1), Signal{});
        QString error;
        for (qsizetype k = 0; k + 1 < paths.size(); ++k) {
            if (!SignalDataset::read(run.file(), paths[k], m_otherInputs[static_cast<std::size_t>(k)],
                                     error)) {
                addError(error);
                return false;
            }
        }
        TimeSpan span;
        const bool read = readsInputTime()
                              ? SignalDataset::read(run.file(), paths.last(), m_input, error)
                              : SignalDataset::readValues(run.file(), paths.last(), m_input, span, error);
        if (!read) {
            addError(error);
            return false;
        }
        m_inputRate =
            readsInputTime() ? sampleRateOf(m_input.time) : sampleRateOf(span.count, span.first, span.last);
        m_inputPath = paths.last();
        m_output = Signal{};
        m_output.unit = m_input.unit;
        m_outputAttributes.clear();
        if (!computeOperation() || isCanceled())
            return false;
        const QString written =
            keepsInputTime()
                ? run.writeSignalWithInputTime(m_inputPath, m_output, error, outputSensor(),
                                               m_outputAttributes)
                : run.writeSignal(m_inputPath, m_output, error, outputSensor(), m_outputAttributes);
        if (written.isEmpty()) {
            addError(error);
            return false;
        }
        addOutput(written);
        // The next input is read into this output's memory: signals of one recording have
        // the same length, so it is neither allocated nor cleared again.
        m_input.values = std::move(m_output.values);
        m_input.time = std::move(m_output.time);
        return true;
    });
    m_stepFeedback = nullptr;
    m_input = Signal{};
    m_otherInputs.clear();
    m_output = Signal{};
    m_outputAttributes.clear();
}

} // namespace zarvi
