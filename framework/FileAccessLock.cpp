#include "framework/FileAccessLock.h"

#include <QFileInfo>

#include <map>
#include <memory>

namespace zarvi {

std::mutex& FileAccessLock::mutexFor(const QString& path)
{
    static std::mutex registryMutex;
    static std::map<QString, std::unique_ptr<std::mutex>> mutexes;
    const QFileInfo info(path);
    const QString key = info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
    std::lock_guard<std::mutex> guard(registryMutex);
    auto& slot = mutexes[key];
    if (!slot)
        slot = std::make_unique<std::mutex>();
    return *slot;
}

std::unique_lock<std::mutex> FileAccessLock::lock(const QString& path)
{
    return std::unique_lock<std::mutex>(mutexFor(path));
}

std::unique_lock<std::mutex> FileAccessLock::tryLock(const QString& path)
{
    return std::unique_lock<std::mutex>(mutexFor(path), std::try_to_lock);
}

} // namespace zarvi
