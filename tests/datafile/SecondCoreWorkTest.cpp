// Work beside the reporting thread: its result, and a stop that always reaches it.
#include "datafile/SecondCoreWork.h"

#include <gtest/gtest.h>

#include <atomic>

namespace zarvi {
namespace {

/// Runs until its feedback says stop, counting its rounds.
int untilStopped(Feedback* feedback, std::atomic<int>& rounds)
{
    while (!feedback->isCanceled())
        ++rounds;
    return -1;
}

struct CancelledFeedback : Feedback
{
    bool isCanceled() const override { return true; }
};

TEST(SecondCoreWork, GivesItsResultAndAlwaysStops)
{
    SecondCoreWork<int> sum([](Feedback* feedback) { return feedback->isCanceled() ? 0 : 2 + 3; });
    EXPECT_EQ(sum.wait(nullptr), 5);

    // A cancel of the waiting thread's feedback reaches the work.
    std::atomic<int> rounds{0};
    SecondCoreWork<int> cancelled([&](Feedback* feedback) { return untilStopped(feedback, rounds); });
    CancelledFeedback user;
    EXPECT_EQ(cancelled.wait(&user), -1);

    // So does stop(), and leaving the scope without waiting stops it and waits.
    SecondCoreWork<int> stopped([&](Feedback* feedback) { return untilStopped(feedback, rounds); });
    stopped.stop();
    EXPECT_EQ(stopped.wait(nullptr), -1);
    {
        SecondCoreWork<int> left([&](Feedback* feedback) { return untilStopped(feedback, rounds); });
    }
    SUCCEED(); // reaching this line is the check: the destructor returned
}

} // namespace
} // namespace zarvi
