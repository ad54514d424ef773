#pragma once

#include <QString>

#include <memory>

class QLockFile;

namespace zarvi {

/// The single-instance guard: a lock file in the temporary folder, named after
/// the program's fixed identifier. Whoever holds it is the one running instance;
/// the lock is released by unlock() or with the object. GUI thread.
class InstanceLock
{
public:
    explicit InstanceLock(const QString& tempFolder);
    ~InstanceLock();
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;

    /// The temporary folder + "/" + "<identifier>.lock".
    static QString lockFilePath(const QString& tempFolder);

    /// Tries to take the lock, waiting at most timeoutMs milliseconds.
    bool tryLock(int timeoutMs);
    bool isLocked() const;
    void unlock();

private:
    std::unique_ptr<QLockFile> m_lock;
};

} // namespace zarvi
