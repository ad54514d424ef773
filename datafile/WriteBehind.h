#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <thread>

namespace zarvi {

/// Writes one buffer at a time to a file on a thread of its own, so that the caller can
/// fill its next buffer meanwhile: reading a frame and writing the one before then share
/// the two cores instead of taking turns on one. The caller keeps two buffers and gives
/// them in turn; start() returns once the write before has finished, so the buffer that
/// write used is free again. Created, used and destroyed on one thread (the caller's);
/// destroying it waits for the write in flight.
class WriteBehind
{
public:
    explicit WriteBehind(int fd);
    ~WriteBehind();
    WriteBehind(const WriteBehind&) = delete;
    WriteBehind& operator=(const WriteBehind&) = delete;

    /// Waits for the write in flight, then starts writing `size` bytes of `data` at
    /// `offset`; `data` must stay untouched until the next start() or finish() returns.
    /// False, starting nothing, once a write has failed.
    bool start(const unsigned char* data, std::size_t size, std::uint64_t offset);
    /// Waits for the write in flight; false when any write failed.
    bool finish();
    /// The errno of the write that failed, 0 while none has.
    int error() const { return m_error; }

private:
    void writeLoop();

    const int m_fd;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    const unsigned char* m_data = nullptr;
    std::size_t m_size = 0;
    std::uint64_t m_offset = 0;
    bool m_pending = false;
    bool m_quit = false;
    int m_error = 0;
    std::thread m_thread;
};

} // namespace zarvi
