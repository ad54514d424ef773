#pragma once

#include <QString>

#include <atomic>
#include <cstddef>

namespace zarvi {

/// The one channel through which a long computation reports progress and learns
/// that it must stop. Kernels take a Feedback* (null means: no reporting, never
/// cancelled). Implemented by the operation framework on the worker thread and by
/// the command-line runner; isCanceled() must be cheap enough to poll per sample.
class Feedback
{
public:
    virtual ~Feedback() = default;
    virtual bool isCanceled() const { return false; }
    /// Progress of the current stage, 0 to 100.
    virtual void setProgress(int /*percent*/) {}
    /// Names the stage that now runs ("Applying filter...").
    virtual void setLabel(const QString& /*label*/) {}
    /// Something the user should know although the work goes on (a stage skipped, a
    /// suspicious fit). The receiver decides how to show it, and shows each text once.
    virtual void warn(const QString& /*message*/) {}
};

/// Maps the 0..100 of one stage onto [from, to] of a whole run, so that a run of
/// several stages or inputs reports one rising progress. Forwards the rest.
class ScaledFeedback : public Feedback
{
public:
    ScaledFeedback(Feedback* target, int from, int to) : m_target(target), m_from(from), m_to(to) {}
    bool isCanceled() const override { return m_target && m_target->isCanceled(); }
    void setProgress(int percent) override
    {
        if (m_target)
            m_target->setProgress(m_from + (m_to - m_from) * percent / 100);
    }
    void setLabel(const QString& label) override
    {
        if (m_target)
            m_target->setLabel(label);
    }
    void warn(const QString& message) override
    {
        if (m_target)
            m_target->warn(message);
    }

private:
    Feedback* m_target;
    int m_from;
    int m_to;
};

/// The feedback of work that runs on a second core beside the thread that reports: it
/// reports nothing (the reporting thread speaks for both) and is cancelled when that
/// thread raises the flag.
class StopFlagFeedback : public Feedback
{
public:
    explicit StopFlagFeedback(const std::atomic<bool>& stop) : m_stop(stop) {}
    bool isCanceled() const override { return m_stop.load(std::memory_order_relaxed); }

private:
    const std::atomic<bool>& m_stop;
};

/// Turns a loop counter into percent and forwards it only when the percent
/// changes, so a loop over millions of samples reports at most about 101 times.
/// Also answers the cancel question for that loop.
class ProgressTracker
{
public:
    ProgressTracker(Feedback* feedback, std::size_t total, int from = 0, int to = 100)
        : m_feedback(feedback), m_total(total == 0 ? 1 : total), m_from(from), m_span(to - from)
    {
    }

    /// Reports progress for `done` items out of the total, when the percent changed.
    void update(std::size_t done)
    {
        if (!m_feedback)
            return;
        const int percent = m_from + static_cast<int>((static_cast<double>(done) / m_total) * m_span);
        if (percent != m_last) {
            m_last = percent;
            m_feedback->setProgress(percent);
        }
    }
    bool isCanceled() const { return m_feedback && m_feedback->isCanceled(); }

private:
    Feedback* m_feedback;
    std::size_t m_total;
    int m_from;
    int m_span;
    int m_last = -1;
};

} // namespace zarvi
