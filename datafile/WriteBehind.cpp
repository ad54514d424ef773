#include "datafile/WriteBehind.h"

#include "datafile/PositionedIo.h"

#include <cerrno>

namespace zarvi {

WriteBehind::WriteBehind(int fd) : m_fd(fd), m_thread([this] { writeLoop(); }) {}

WriteBehind::~WriteBehind()
{
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return !m_pending; });
        m_quit = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

bool WriteBehind::start(const unsigned char* data, std::size_t size, std::uint64_t offset)
{
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return !m_pending; });
        if (m_error != 0)
            return false;
        m_data = data;
        m_size = size;
        m_offset = offset;
        m_pending = true;
    }
    m_changed.notify_all();
    return true;
}

bool WriteBehind::finish()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_pending; });
    return m_error == 0;
}

void WriteBehind::writeLoop()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_pending || m_quit; });
        if (!m_pending)
            return;
        lock.unlock();
        errno = 0;
        const bool written = writeWholeAt(m_fd, m_data, m_size, m_offset);
        const int reason = written ? 0 : (errno != 0 ? errno : EIO);
        lock.lock();
        m_error = reason;
        m_pending = false;
        m_changed.notify_all();
    }
}

} // namespace zarvi
