#include "image/ImageFramePool.h"

#include <algorithm>

namespace zarvi {

ImageFramePool::ImageFramePool(std::vector<std::unique_ptr<ImageFrameWorker>> workers, std::size_t slots)
    : m_workers(std::move(workers)), m_slots(std::max(slots, m_workers.size())),
      m_states(m_slots.size(), State::Free)
{
    m_threads.reserve(m_workers.size());
    for (const std::unique_ptr<ImageFrameWorker>& worker : m_workers)
        m_threads.emplace_back([this, w = worker.get()] { work(*w); });
}

ImageFramePool::~ImageFramePool()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_queued.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

ImageFramePool::Slot* ImageFramePool::freeSlot()
{
    // Only the run's thread changes the counts it reads here.
    if (m_submitted - m_released >= m_slots.size())
        return nullptr;
    return &m_slots[m_submitted % m_slots.size()];
}

void ImageFramePool::submit()
{
    {
        const std::lock_guard lock(m_mutex);
        m_states[m_submitted % m_slots.size()] = State::Queued;
        ++m_submitted;
    }
    m_queued.notify_one();
}

ImageFramePool::Slot& ImageFramePool::takeOldest()
{
    std::unique_lock lock(m_mutex);
    const std::size_t i = m_taken % m_slots.size();
    m_computed.wait(lock, [&] { return m_states[i] == State::Done; });
    ++m_taken;
    return m_slots[i];
}

void ImageFramePool::release()
{
    const std::lock_guard lock(m_mutex);
    m_states[m_released % m_slots.size()] = State::Free;
    ++m_released;
}

void ImageFramePool::work(ImageFrameWorker& worker)
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_queued.wait(lock, [&] { return m_stopping || m_started < m_submitted; });
        if (m_stopping)
            return;
        const std::size_t i = m_started++ % m_slots.size();
        m_states[i] = State::Computing;
        Slot& slot = m_slots[i];
        lock.unlock();
        worker.compute(slot.index, slot.input, slot.output);
        lock.lock();
        m_states[i] = State::Done;
        m_computed.notify_one();
    }
}

} // namespace zarvi
