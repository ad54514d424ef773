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
        const auto others = static_cast<std::size_t>(paths.size() - 1);
        m_otherInputs.assign(others, Signal{});
        m_otherRates.assign(others, 0.0);
        // Reads one signal, with its time vector or only the time's ends.
        const auto readSignal = [&](const QString& path, Signal& signal, double& rate) {
            QString error;
            TimeSpan span;
            const bool read = readsTime() ? SignalDataset::read(run.file(), path, signal, error)
                                          : SignalDataset::readValues(run.file(), path, signal, span, error);
            if (!read)
                addError(error);
            rate = readsTime() ? sampleRateOf(signal.time) : sampleRateOf(span.count, span.first, span.last);
            return read;
        };
        for (std::size_t k = 0; k < others; ++k) {
            if (!readSignal(paths[static_cast<qsizetype>(k)], m_otherInputs[k], m_otherRates[k]))
                return false;
        }
        if (!readSignal(paths.last(), m_input, m_inputRate))
            return false;
        m_inputPath = paths.last();
        m_output = Signal{};
        m_output.unit = m_input.unit;
        m_outputAttributes.clear();
        if (!computeOperation() || isCanceled())
            return false;
        QString error;
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
    m_otherRates.clear();
    m_output = Signal{};
    m_outputAttributes.clear();
}

} // namespace zarvi
