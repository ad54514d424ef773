#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zarvi {

class TiffHandle;

/// Turns stored TIFF samples into a 16-bit frame: decodes the current page of an open
/// file strip by strip or tile by tile (any compression libtiff knows), or finishes
/// samples the caller read raw. 8-bit samples are widened without changing their value.
/// Keeps one scratch buffer from frame to frame. Lives with its TiffStackReader, on that
/// reader's thread.
class TiffPageDecoder
{
public:
    /// Decodes the current page (width x height, 8 or 16 bits) into out, row by row.
    /// False when libtiff fails; tiff.lastError() then says why.
    bool decode(TiffHandle& tiff, std::size_t width, std::size_t height, int bitsPerSample,
                std::span<std::uint16_t> out);

    /// Where a frame's raw samples are to be read: the frame itself for 16-bit samples,
    /// the scratch buffer for 8-bit ones.
    char* rawTarget(std::span<std::uint16_t> out, int bitsPerSample);
    /// Completes a frame read into rawTarget(): widens 8-bit samples, or swaps 16-bit
    /// ones stored in the other byte order.
    void finishRaw(std::span<std::uint16_t> out, int bitsPerSample, bool swapBytes);

private:
    bool decodeStrips(TiffHandle& tiff, std::size_t width, std::size_t height, bool wide,
                      std::span<std::uint16_t> out);
    bool decodeTiles(TiffHandle& tiff, std::size_t width, std::size_t height, std::size_t sampleBytes,
                     std::span<std::uint16_t> out);
    std::uint8_t* scratch(std::size_t bytes);

    std::vector<std::uint8_t> m_scratch;
};

} // namespace zarvi
