#pragma once

#include <cstddef>
#include <vector>

namespace zarvi {

/// Which frames of a stack Discard Frames leaves out: the user's 0-based indices and
/// those autodetection adds. A frame named twice is discarded once. Plain value, any
/// thread.
class FrameSelection
{
public:
    explicit FrameSelection(std::size_t frames = 0) : m_discarded(frames, false) {}

    /// Discards the frames at `indices`. False, with `badIndex` the first offender and
    /// nothing changed, when one is not a whole number from 0 to frames - 1.
    bool discard(const std::vector<double>& indices, double& badIndex);
    void discard(std::size_t index) { m_discarded[index] = true; }

    bool isDiscarded(std::size_t index) const { return m_discarded[index]; }
    std::size_t frameCount() const { return m_discarded.size(); }
    std::size_t keptCount() const;

private:
    std::vector<bool> m_discarded;
};

} // namespace zarvi
