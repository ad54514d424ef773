#include "analysis/AnalysisOperationProcess.h"

#include "datafile/HDF5Writer_V6.h"
#include "definitions/FileDefinitions.h"
#include "framework/FileAccessLock.h"
#include "framework/RunOutputs.h"

namespace zarvi {

AnalysisOperationProcess::AnalysisOperationProcess(const QString& outputName, QObject* parent)
    : AbstractOperationProcess(parent), m_outputName(outputName)
{
}

void AnalysisOperationProcess::runOperation()
{
    const auto lock = FileAccessLock::lock(m_filepath);
    HDF5Writer_V6 file;
    if (file.open(m_filepath) < 0) {
        addError(file.lastError());
        return;
    }
    RunOutputs results(file, FileDefinitions::DataAnalyzed, FileDefinitions::Signals, m_outputName,
                       m_parameters, m_sourceDatapaths);
    m_file = &file;
    m_results = &results;
    const int count = static_cast<int>(m_sourceDatapaths.size());
    for (int i = 0; i < count && m_errors.isEmpty() && !isCanceled(); ++i) {
        ScaledFeedback step(feedback(), 100 * i / count, 100 * (i + 1) / count);
        m_stepFeedback = &step;
        m_inputPath = m_sourceDatapaths[i];
        QString error;
        if (!SignalDataset::read(file, m_inputPath, m_input, error)) {
            addError(error);
            break;
        }
        if (!computeOperation())
            break;
    }
    m_stepFeedback = nullptr;
    m_results = nullptr;
    m_file = nullptr;
    m_input = Signal{};
    if (!m_errors.isEmpty() || isCanceled())
        results.rollback();
}

} // namespace zarvi
