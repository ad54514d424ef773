#pragma once

#include "datafile/SignalDataset.h"
#include "framework/AbstractOperationProcess.h"

#include <QList>

#include <vector>

namespace zarvi {

class HDF5Manager_V6;

/// The family run of the signal operations: for every input of the run (a selected
/// signal, or a group of signals computed together) it reads values and time, lets
/// the operation compute m_output from m_input, and writes the result under
/// "DataProcessed/<device>/Signals/<series>/<Output><K>/<sensor>" through the run
/// transaction, which removes all outputs again when any input fails or the run is
/// cancelled. Operations write only computeOperation(). Lives on the operation's
/// worker thread.
class SignalOperationProcess : public AbstractOperationProcess
{
    Q_OBJECT

public:
    using AbstractOperationProcess::AbstractOperationProcess;

protected:
    void runOperation() override;

    /// The inputs of the run, each a list of signal paths read together; the last path
    /// of an input is the one its output derives from. Each selected signal alone by
    /// default. Empty after adding an error when the selection does not fit.
    virtual QList<QStringList> inputsOf(HDF5Manager_V6& file);
    /// Name of the output's sensor group; empty names it after the input's sensor.
    virtual QString outputSensor() const { return {}; }
    /// The output's time is the input's: the input's "Time" is then linked under the output,
    /// not written back from m_output.time, and computeOperation() may leave m_output.time empty.
    virtual bool keepsInputTime() const { return false; }
    /// False for an operation that needs only the sample rates: the time vectors of the
    /// input's signals are then not read (their `time` stays empty), only their ends.
    virtual bool readsTime() const { return true; }

    /// The last signal of the current input and its path.
    Signal m_input;
    QString m_inputPath;
    /// The sample rate of m_input, from the ends of its time vector (see sampleRateOf()).
    double m_inputRate = 0.0;
    /// The other signals of the current input, in the order inputsOf() gave them, and
    /// their sample rates.
    std::vector<Signal> m_otherInputs;
    std::vector<double> m_otherRates;
    /// What computeOperation() produces (with the input's unit unless it sets another).
    Signal m_output;
    /// Attributes of the output's values besides the run's, e.g. what a fit found.
    QVariantMap m_outputAttributes;
    /// Progress of the current input, already scaled into the whole run.
    Feedback* m_stepFeedback = nullptr;
};

} // namespace zarvi
