// The per-file lock as the GUI thread meets it: busy during a run, waited for during a
// worker's brief read.
#include "framework/FileAccessLock.h"
#include "common/TempDir.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace zarvi {
namespace {

using namespace std::chrono_literals;

TEST(FileAccessLock, AFileHeldByARunIsBusyAtOnceButABriefReadIsWaitedFor)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("held.orvel"));
    for (const bool brief : {false, true}) {
        std::atomic<bool> held{false}, release{false}, released{false};
        std::thread worker([&] {
            auto lock = brief ? FileAccessLock::lockBriefly(file) : FileAccessLock::lock(file);
            held = true;
            if (brief)
                std::this_thread::sleep_for(50ms);
            while (!brief && !release)
                std::this_thread::sleep_for(1ms);
            released = true;
            lock.unlock();
            if (brief)
                FileAccessLock::endBriefHold(file);
        });
        while (!held)
            std::this_thread::sleep_for(1ms);
        {
            const auto lock = FileAccessLock::tryLock(file);
            // A run's hold is reported at once; a brief one is waited out.
            EXPECT_EQ(lock.owns_lock(), brief);
            EXPECT_EQ(released.load(), brief);
            EXPECT_TRUE(FileAccessLock::tryLock(dir.file(QStringLiteral("other.orvel"))).owns_lock());
        }
        release = true;
        worker.join();
    }
}

} // namespace
} // namespace zarvi
