#include "framework/FileAccessLock.h"

#include <QFileInfo>

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <thread>

namespace zarvi {

struct FileAccessLock::Entry
{
    std::mutex mutex;
    // Brief holds taken and not yet ended; counted, since one may begin as another ends.
    std::atomic<int> briefHolds{0};
};

FileAccessLock::Entry& FileAccessLock::entryFor(const QString& path)
{
    static std::mutex registryMutex;
    static std::map<QString, std::unique_ptr<Entry>> entries;
    const QFileInfo info(path);
    const QString key = info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
    std::lock_guard<std::mutex> guard(registryMutex);
    auto& slot = entries[key];
    if (!slot)
        slot = std::make_unique<Entry>();
    return *slot;
}

std::unique_lock<std::mutex> FileAccessLock::lock(const QString& path)
{
    return std::unique_lock<std::mutex>(entryFor(path).mutex);
}

std::unique_lock<std::mutex> FileAccessLock::tryLock(const QString& path)
{
    using namespace std::chrono_literals;
    Entry& entry = entryFor(path);
    std::unique_lock<std::mutex> lock(entry.mutex, std::try_to_lock);
    if (lock.owns_lock())
        return lock;
    // A view's own preview reading a frame lets go within milliseconds: waiting for
    // it keeps the view from calling its file busy. The second look covers a brief
    // hold taken just before its mark was set; the time limit covers a slow disk.
    std::this_thread::sleep_for(1ms);
    const auto giveUp = std::chrono::steady_clock::now() + 2s;
    while (!lock.try_lock() && entry.briefHolds.load() > 0) {
        if (std::chrono::steady_clock::now() > giveUp)
            break;
        std::this_thread::sleep_for(1ms);
    }
    return lock;
}

std::unique_lock<std::mutex> FileAccessLock::lockBriefly(const QString& path)
{
    Entry& entry = entryFor(path);
    std::unique_lock<std::mutex> lock(entry.mutex);
    ++entry.briefHolds;
    return lock;
}

void FileAccessLock::endBriefHold(const QString& path)
{
    --entryFor(path).briefHolds;
}

} // namespace zarvi
