#pragma once

#include <QString>

#include <csignal>

#include "cli/TerminalProgress.h"
#include "datafile/Feedback.h"

namespace zarvi {

/// Feedback of a command that runs a file-editing job on the main thread: progress
/// goes to the terminal, and Ctrl-C (SIGINT) raises a flag that the job polls as its
/// cancel. The handler is installed for the object's lifetime; after it, Ctrl-C is
/// ignored, since the job's outcome stands: a job that finished is never reported as
/// cancelled. Main thread.
class InterruptibleFeedback : public Feedback
{
public:
    InterruptibleFeedback();
    ~InterruptibleFeedback() override;
    InterruptibleFeedback(const InterruptibleFeedback&) = delete;
    InterruptibleFeedback& operator=(const InterruptibleFeedback&) = delete;

    bool isCanceled() const override { return s_interrupted != 0; }
    void setProgress(int percent) override { m_progress.setPercent(percent); }
    void setLabel(const QString& label) override { m_progress.setLabel(label); }
    /// Ends the progress line.
    void finish() { m_progress.finish(); }

private:
    static void onInterrupt(int);

    static volatile std::sig_atomic_t s_interrupted;
    TerminalProgress m_progress;
};

} // namespace zarvi
