#pragma once

#include "datafile/SignalDataset.h"
#include "framework/AbstractOperationProcess.h"

namespace zarvi {

class RunTransaction;

/// The family run of the analysis operations: for every selected signal it reads values
/// and time (mapped from the file where they can be, as analyses only read them) and lets
/// the operation analyse m_input and write its results through m_run, which places them under
/// "DataAnalyzed/<device>/Signals/<series>/<Output><K>/<sensor>" and removes
/// everything the run wrote when any input fails or the run is cancelled. Lives on
/// the operation's worker thread.
class AnalysisOperationProcess : public AbstractOperationProcess
{
    Q_OBJECT

public:
    using AbstractOperationProcess::AbstractOperationProcess;

protected:
    void runOperation() override;

    /// The signal being analysed and the path of its values.
    ReadOnlySignal m_input;
    QString m_inputPath;
    /// The run's file and outputs, valid during computeOperation().
    RunTransaction* m_run = nullptr;
    /// Progress of the current input, already scaled into the whole run.
    Feedback* m_stepFeedback = nullptr;
};

} // namespace zarvi
