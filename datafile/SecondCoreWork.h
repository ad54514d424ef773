#pragma once

#include "datafile/Feedback.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <future>

namespace zarvi {

/// Work started on a second thread beside the thread that reports progress: the
/// isosbestic's stage while the biosensor's runs. The work gets a feedback that reports
/// nothing and is cancelled when stop() is called, or when the reporting thread's own
/// feedback is cancelled while it waits. Created and waited for on the reporting
/// thread; whatever the work touches must stay alive until wait() returns or the object
/// is destroyed, which stops the work and waits for it.
template <typename Result> class SecondCoreWork
{
public:
    explicit SecondCoreWork(std::function<Result(Feedback*)> work)
        : m_feedback(m_stop),
          m_done(std::async(std::launch::async, [this, work = std::move(work)] { return work(&m_feedback); }))
    {
    }
    SecondCoreWork(const SecondCoreWork&) = delete;
    SecondCoreWork& operator=(const SecondCoreWork&) = delete;
    ~SecondCoreWork()
    {
        if (m_done.valid()) {
            stop();
            m_done.wait();
        }
    }

    /// Asks the work to stop at its next cancel check.
    void stop() { m_stop = true; }

    /// The work's result once it has finished; a cancel of `feedback` meanwhile reaches
    /// the work. Called once.
    Result wait(Feedback* feedback)
    {
        while (m_done.wait_for(std::chrono::milliseconds(5)) != std::future_status::ready) {
            if (feedback && feedback->isCanceled())
                stop();
        }
        return m_done.get();
    }

private:
    std::atomic<bool> m_stop{false};
    StopFlagFeedback m_feedback;
    std::future<Result> m_done;
};

} // namespace zarvi
