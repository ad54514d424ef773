#include "framework/LockedFileRead.h"

#include "definitions/DatasetDefinitions.h"
#include "framework/FileAccessLock.h"

namespace zarvi {

LockedFileRead::LockedFileRead(const QString& path, Wait wait)
    : m_lock(wait == Wait::Yes ? FileAccessLock::lock(path) : FileAccessLock::tryLock(path))
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
}

} // namespace zarvi
