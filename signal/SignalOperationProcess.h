#pragma once

#include "datafile/SignalDataset.h"
#include "framework/AbstractOperationProcess.h"

#include <functional>

namespace zarvi {

class HDF5Writer_V6;
class RunOutputs;

/// The family run of the signal operations: for every selected signal it reads
/// values and time, lets the operation compute m_output from m_input, and writes
/// the result under "DataProcessed/<device>/Signals/<series>/<Output><K>/<sensor>".
/// All outputs of a run are removed again when any input fails or the run is
/// cancelled. Operations that combine several inputs override runOperation() and
/// build their run from withFile(), openOutputs() and writeOutput(). Lives on the
/// operation's worker thread.
class SignalOperationProcess : public AbstractOperationProcess
{
    Q_OBJECT

public:
    explicit SignalOperationProcess(const QString& outputName, QObject* parent = nullptr);

protected:
    void runOperation() override;

    /// Opens the data file for writing, holding its lock for the whole call, and runs
    /// `body` on it; a file that cannot be opened becomes the run's error.
    void withFile(const std::function<void(HDF5Writer_V6& file)>& body);
    /// Writes m_output as the output of `inputPath` (into the sensor group `sensor`, or
    /// one named after the input's sensor) and records its path; false after adding
    /// the error.
    bool writeOutput(RunOutputs& outputs, const QString& inputPath, const QString& sensor = QString());
    /// Removes the run's outputs when it failed or was cancelled.
    void finishOutputs(RunOutputs& outputs);
    QString outputName() const { return m_outputName; }

    /// The signal being processed and the path it was read from.
    Signal m_input;
    QString m_inputPath;
    /// What computeOperation() produces for it (the family run copies the unit from the input).
    Signal m_output;
    /// Progress of the current input, already scaled into the whole run.
    Feedback* m_stepFeedback = nullptr;

private:
    QString m_outputName;
};

} // namespace zarvi
