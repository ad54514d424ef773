#include "signal/SignalOperationProcess.h"

#include "datafile/HDF5Writer_V6.h"
#include "definitions/FileDefinitions.h"
#include "framework/FileAccessLock.h"
#include "framework/RunOutputs.h"

namespace zarvi {

SignalOperationProcess::SignalOperationProcess(const QString& outputName, QObject* parent)
    : AbstractOperationProcess(parent), m_outputName(outputName)
{
}

void SignalOperationProcess::withFile(const std::function<void(HDF5Writer_V6&)>& body)
{
    const auto lock = FileAccessLock::lock(m_filepath);
    HDF5Writer_V6 file;
    if (file.open(m_filepath) < 0) {
        addError(file.lastError());
        return;
    }
    body(file);
}

bool SignalOperationProcess::writeOutput(RunOutputs& outputs, const QString& inputPath, const QString& sensor)
{
    QString error;
    const QString written = outputs.writeSignal(inputPath, m_output, error, sensor);
    if (written.isEmpty()) {
        addError(error);
        return false;
    }
    addOutput(written);
    return true;
}

void SignalOperationProcess::finishOutputs(RunOutputs& outputs)
{
    m_stepFeedback = nullptr;
    m_input = Signal{};
    m_output = Signal{};
    if (!m_errors.isEmpty() || isCanceled())
        outputs.rollback();
}

void SignalOperationProcess::runOperation()
{
    withFile([this](HDF5Writer_V6& file) {
        RunOutputs outputs(file, FileDefinitions::DataProcessed, FileDefinitions::Signals, m_outputName,
                           m_parameters, m_sourceDatapaths);
        const int count = static_cast<int>(m_sourceDatapaths.size());
        for (int i = 0; i < count && m_errors.isEmpty() && !isCanceled(); ++i) {
            ScaledFeedback step(feedback(), 100 * i / count, 100 * (i + 1) / count);
            m_stepFeedback = &step;
            m_inputPath = m_sourceDatapaths[i];
            m_output = Signal{};
            QString error;
            if (!SignalDataset::read(file, m_inputPath, m_input, error)) {
                addError(error);
                break;
            }
            if (!computeOperation() || isCanceled())
                break;
            m_output.unit = m_input.unit;
            writeOutput(outputs, m_inputPath);
        }
        finishOutputs(outputs);
    });
}

} // namespace zarvi
