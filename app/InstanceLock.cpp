#include "app/InstanceLock.h"

#include "definitions/ZarviMainDefinitions.h"

#include <QLockFile>

namespace zarvi {

InstanceLock::InstanceLock(const QString& tempFolder)
    : m_lock(std::make_unique<QLockFile>(lockFilePath(tempFolder)))
{
}

InstanceLock::~InstanceLock() = default;

QString InstanceLock::lockFilePath(const QString& tempFolder)
{
    return tempFolder + QLatin1Char('/') +
           ZarviMainDefinitions::LockFilePattern.arg(ZarviMainDefinitions::LockIdentifier);
}

bool InstanceLock::tryLock(int timeoutMs)
{
    return m_lock->tryLock(timeoutMs);
}

bool InstanceLock::isLocked() const
{
    return m_lock->isLocked();
}

void InstanceLock::unlock()
{
    m_lock->unlock();
}

} // namespace zarvi
