#pragma once

#include <QImage>

#include <cstdint>
#include <span>

namespace zarvi {

/// The grey levels mapped to black and to white.
struct ContrastRange
{
    std::uint16_t low = 0;
    std::uint16_t high = 65535;
};

/// Contrast of unsigned 16-bit frames for display. Pure functions, any thread.
class FrameContrast
{
public:
    /// The pixel values at two percentiles of the frame (nearest rank: the
    /// value at rank ceil(p/100 * n), counted from 1). With low and high equal,
    /// high is raised by one so the mapping stays defined. Empty frame: 0..65535.
    static ContrastRange percentileRange(std::span<const std::uint16_t> frame, double lowPercent,
                                         double highPercent);
    /// The whole range of a pixel of `bitCount` significant bits (16 when out of 1..16).
    static ContrastRange fullRange(int bitCount);
    /// An 8-bit grey image, low and below black, high and above white, linear between.
    static QImage toGray8(std::span<const std::uint16_t> frame, int width, int height, ContrastRange range);
};

} // namespace zarvi
