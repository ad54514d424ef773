#include "framework/LockedFileRead.h"

#include "definitions/DatasetDefinitions.h"
#include "framework/FileAccessLock.h"

namespace zarvi {

namespace {

std::unique_lock<std::mutex> takeLock(const QString& path, LockedFileRead::Wait wait)
{
    switch (wait) {
    case LockedFileRead::Wait::No:
        return FileAccessLock::tryLock(path);
    case LockedFileRead::Wait::Yes:
        return FileAccessLock::lock(path);
    case LockedFileRead::Wait::Briefly:
        return FileAccessLock::lockBriefly(path);
    }
    return {};
}

} // namespace

LockedFileRead::LockedFileRead(const QString& path, Wait wait)
    : m_path(path), m_brief(wait == Wait::Briefly), m_lock(takeLock(path, wait))
{
    if (!m_lock.owns_lock()) {
        m_busy = true;
        m_error = DatasetDefinitions::fileBusyMessage();
        return;
    }
    if (m_reader.open(path) < 0)
        m_error = m_reader.lastError();
}

LockedFileRead::~LockedFileRead()
{
    m_reader.closeFile();
    if (m_brief) {
        // Released first, so that a thread waiting out the hold finds the file free.
        m_lock.unlock();
        FileAccessLock::endBriefHold(m_path);
    }
}

} // namespace zarvi
