#pragma once

#include "datafile/SignalDataset.h"
#include "framework/AbstractOperationProcess.h"

namespace zarvi {

/// The family run of the signal operations: for every selected signal it reads
/// values and time, lets the operation compute m_output from m_input, and writes
/// the result under "DataProcessed/<device>/Signals/<series>/<Output><K>/<sensor>".
/// All outputs of a run are removed again when any input fails or the run is
/// cancelled. Lives on the operation's worker thread.
class SignalOperationProcess : public AbstractOperationProcess
{
    Q_OBJECT

public:
    explicit SignalOperationProcess(const QString& outputName, QObject* parent = nullptr);

protected:
    void runOperation() override;

    /// The signal being processed and the path it was read from.
    Signal m_input;
    QString m_inputPath;
    /// What computeOperation() produces for it (the unit is copied from the input).
    Signal m_output;
    /// Progress of the current input, already scaled into the whole run.
    Feedback* m_stepFeedback = nullptr;

private:
    QString m_outputName;
};

} // namespace zarvi
