#include "roi/FrameContrast.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zarvi {

namespace {

// Value at 1-based rank `rank` of the counted values.
std::uint16_t valueAtRank(const std::vector<std::uint32_t>& histogram, std::size_t rank)
{
    std::size_t seen = 0;
    for (std::size_t v = 0; v < histogram.size(); ++v) {
        seen += histogram[v];
        if (seen >= rank)
            return static_cast<std::uint16_t>(v);
    }
    return 65535;
}

std::size_t rankOf(double percent, std::size_t n)
{
    const auto rank = static_cast<std::size_t>(std::ceil(std::clamp(percent, 0.0, 100.0) / 100.0 * n));
    return std::clamp<std::size_t>(rank, 1, n);
}

} // namespace

ContrastRange FrameContrast::percentileRange(std::span<const std::uint16_t> frame, double lowPercent,
                                             double highPercent)
{
    if (frame.empty())
        return {};
    std::vector<std::uint32_t> histogram(65536, 0);
    for (std::uint16_t v : frame)
        ++histogram[v];
    ContrastRange range;
    range.low = valueAtRank(histogram, rankOf(lowPercent, frame.size()));
    range.high = valueAtRank(histogram, rankOf(highPercent, frame.size()));
    if (range.high <= range.low) {
        if (range.low == 65535)
            range.low = 65534;
        range.high = static_cast<std::uint16_t>(range.low + 1);
    }
    return range;
}

ContrastRange FrameContrast::fullRange(int bitCount)
{
    const int bits = bitCount >= 1 && bitCount <= 16 ? bitCount : 16;
    return {0, static_cast<std::uint16_t>((1u << bits) - 1u)};
}

QImage FrameContrast::toGray8(std::span<const std::uint16_t> frame, int width, int height,
                              ContrastRange range)
{
    if (width <= 0 || height <= 0 || frame.size() < static_cast<std::size_t>(width) * height)
        return {};
    // One table for the frame: 65536 entries cost less than a division per pixel.
    std::vector<std::uint8_t> table(65536);
    const double span = std::max(1, range.high - range.low);
    for (std::size_t v = 0; v < table.size(); ++v) {
        const double level = (static_cast<double>(v) - range.low) * 255.0 / span;
        table[v] = static_cast<std::uint8_t>(std::lround(std::clamp(level, 0.0, 255.0)));
    }
    QImage image(width, height, QImage::Format_Grayscale8);
    for (int y = 0; y < height; ++y) {
        const std::uint16_t* source = frame.data() + static_cast<std::size_t>(y) * width;
        std::uint8_t* target = image.scanLine(y);
        for (int x = 0; x < width; ++x)
            target[x] = table[source[x]];
    }
    return image;
}

} // namespace zarvi
