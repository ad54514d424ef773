#include "analysis/AnalysisOperationProcess.h"

#include "definitions/FileDefinitions.h"
#include "framework/RunTransaction.h"

namespace zarvi {

void AnalysisOperationProcess::runOperation()
{
    RunTransaction run;
    if (!openRun(run, FileDefinitions::DataAnalyzed, FileDefinitions::Signals, m_sourceDatapaths))
        return;
    m_run = &run;
    runInputs(run, static_cast<int>(m_sourceDatapaths.size()), [&](int i, Feedback* step) {
        m_stepFeedback = step;
        m_inputPath = m_sourceDatapaths[i];
        QString error;
        if (!SignalDataset::readOnly(run.file(), m_inputPath, m_input, error)) {
            addError(error);
            return false;
        }
        return computeOperation();
    });
    m_stepFeedback = nullptr;
    m_run = nullptr;
    m_input = ReadOnlySignal{};
}

} // namespace zarvi
