#pragma once

#include "image/ImageFrameWorker.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace zarvi {

/// Computes frames on a few threads while the run's thread reads and writes them. The
/// run's thread takes a free slot, reads the next frame into it and submits it; the
/// workers compute the submitted slots in submission order, each frame on whichever
/// worker is free; the run's thread takes the results back in submission order, writes
/// them and releases their slots. A fixed set of slots bounds the frames in memory and
/// lets their buffers be reused, and only the run's thread ever touches the file. The
/// pool lives on the run's thread; its workers on threads of their own, stopped and
/// joined when it is destroyed (a frame being computed is finished first).
class ImageFramePool
{
public:
    /// One frame in flight: its index, the frame as read and its result.
    struct Slot
    {
        std::size_t index = 0;
        cv::Mat input;
        cv::Mat output;
    };

    /// Starts one thread per worker, with `slots` frames in flight at most (at least one
    /// per worker).
    ImageFramePool(std::vector<std::unique_ptr<ImageFrameWorker>> workers, std::size_t slots);
    ~ImageFramePool();
    ImageFramePool(const ImageFramePool&) = delete;
    ImageFramePool& operator=(const ImageFramePool&) = delete;

    /// The slot to read the next frame into; null while every slot is in flight.
    Slot* freeSlot();
    /// Hands the slot returned by freeSlot(), filled, to the workers.
    void submit();
    /// True while a submitted frame has not been taken back.
    bool hasSubmitted() const { return m_taken < m_submitted; }
    /// Waits for the oldest submitted frame to be computed and returns its slot, which
    /// stays the caller's until release().
    Slot& takeOldest();
    /// Gives the slot returned by takeOldest() back for another frame.
    void release();

private:
    enum class State
    {
        Free,
        Queued,
        Computing,
        Done
    };

    void work(ImageFrameWorker& worker);

    std::vector<std::unique_ptr<ImageFrameWorker>> m_workers;
    std::vector<Slot> m_slots;
    std::vector<State> m_states;
    /// Frames submitted, handed to a worker, taken back and released, counted from the
    /// start; frame number i lives in slot i modulo the slot count.
    std::size_t m_submitted = 0;
    std::size_t m_started = 0;
    std::size_t m_taken = 0;
    std::size_t m_released = 0;
    bool m_stopping = false;
    std::mutex m_mutex;
    std::condition_variable m_queued;
    std::condition_variable m_computed;
    std::vector<std::thread> m_threads;
};

} // namespace zarvi
