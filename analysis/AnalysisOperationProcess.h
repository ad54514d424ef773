#pragma once

#include "datafile/SignalDataset.h"
#include "framework/AbstractOperationProcess.h"

namespace zarvi {

class HDF5Writer_V6;
class RunOutputs;

/// The family run of the analysis operations: for every selected signal it reads
/// values and time and lets the operation analyse m_input and write its results
/// through m_results, which places them under
/// "DataAnalyzed/<device>/Signals/<series>/<Output><K>/<sensor>". Everything a run
/// wrote is removed again when any input fails or the run is cancelled. Lives on the
/// operation's worker thread.
class AnalysisOperationProcess : public AbstractOperationProcess
{
    Q_OBJECT

public:
    explicit AnalysisOperationProcess(const QString& outputName, QObject* parent = nullptr);

protected:
    void runOperation() override;

    /// The signal being analysed and the path of its values.
    Signal m_input;
    QString m_inputPath;
    /// The open file and the run's output groups, valid during computeOperation().
    HDF5Writer_V6* m_file = nullptr;
    RunOutputs* m_results = nullptr;
    /// Progress of the current input, already scaled into the whole run.
    Feedback* m_stepFeedback = nullptr;

private:
    QString m_outputName;
};

} // namespace zarvi
