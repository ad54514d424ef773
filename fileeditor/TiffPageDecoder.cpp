#include "fileeditor/TiffPageDecoder.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>

#include "fileeditor/TiffHandle.h"

namespace zarvi {

namespace {

/// Copies 8-bit samples into 16-bit ones. Written in fixed blocks over unaliased
/// pointers, which is what GCC needs to vectorise it at -O2.
void widen(const std::uint8_t* __restrict source, std::uint16_t* __restrict target, std::size_t count)
{
    constexpr std::size_t Block = 32;
    std::size_t i = 0;
    for (; i + Block <= count; i += Block) {
        for (std::size_t j = 0; j < Block; ++j)
            target[i + j] = source[i + j];
    }
    for (; i < count; ++i)
        target[i] = source[i];
}

} // namespace

std::uint8_t* TiffPageDecoder::scratch(std::size_t bytes)
{
    if (m_scratch.size() < bytes)
        m_scratch.resize(bytes);
    return m_scratch.data();
}

char* TiffPageDecoder::rawTarget(std::span<std::uint16_t> out, int bitsPerSample)
{
    return bitsPerSample == 16 ? reinterpret_cast<char*>(out.data())
                               : reinterpret_cast<char*>(scratch(out.size()));
}

void TiffPageDecoder::finishRaw(std::span<std::uint16_t> out, int bitsPerSample, bool swapBytes)
{
    if (bitsPerSample != 16)
        widen(m_scratch.data(), out.data(), out.size());
    else if (swapBytes)
        std::transform(out.begin(), out.end(), out.begin(), [](std::uint16_t v) { return qbswap(v); });
}

bool TiffPageDecoder::decode(TiffHandle& tiff, std::size_t width, std::size_t height, int bitsPerSample,
                             std::span<std::uint16_t> out)
{
    const std::size_t sampleBytes = static_cast<std::size_t>(bitsPerSample) / 8;
    return TIFFIsTiled(tiff.get()) ? decodeTiles(tiff, width, height, sampleBytes, out)
                                   : decodeStrips(tiff, width, height, sampleBytes == 2, out);
}

bool TiffPageDecoder::decodeStrips(TiffHandle& tiff, std::size_t width, std::size_t height, bool wide,
                                   std::span<std::uint16_t> out)
{
    TIFF* t = tiff.get();
    std::uint32_t rowsPerStrip = 0;
    TIFFGetFieldDefaulted(t, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
    if (rowsPerStrip == 0 || rowsPerStrip > height)
        rowsPerStrip = static_cast<std::uint32_t>(height);

    for (std::size_t row = 0; row < height; row += rowsPerStrip) {
        const std::size_t values = std::min<std::size_t>(rowsPerStrip, height - row) * width;
        const auto bytes = static_cast<tmsize_t>(values * (wide ? 2 : 1));
        std::uint16_t* target = out.data() + row * width;
        // 16-bit strips decode straight into the caller's frame; 8-bit ones are widened.
        void* buffer = wide ? static_cast<void*>(target) : scratch(values);
        const tstrip_t strip = TIFFComputeStrip(t, static_cast<std::uint32_t>(row), 0);
        tiff.clearError();
        if (TIFFReadEncodedStrip(t, strip, buffer, bytes) != bytes)
            return false;
        if (!wide)
            widen(m_scratch.data(), target, values);
    }
    return true;
}

bool TiffPageDecoder::decodeTiles(TiffHandle& tiff, std::size_t width, std::size_t height,
                                  std::size_t sampleBytes, std::span<std::uint16_t> out)
{
    TIFF* t = tiff.get();
    std::uint32_t tileWidth = 0;
    std::uint32_t tileHeight = 0;
    TIFFGetField(t, TIFFTAG_TILEWIDTH, &tileWidth);
    TIFFGetField(t, TIFFTAG_TILELENGTH, &tileHeight);
    const tmsize_t tileBytes = TIFFTileSize(t);
    if (tileWidth == 0 || tileHeight == 0 || tileBytes <= 0)
        return false;
    std::uint8_t* tileSamples = scratch(static_cast<std::size_t>(tileBytes));

    for (std::size_t y = 0; y < height; y += tileHeight) {
        const std::size_t rows = std::min<std::size_t>(tileHeight, height - y);
        for (std::size_t x = 0; x < width; x += tileWidth) {
            const std::size_t columns = std::min<std::size_t>(tileWidth, width - x);
            const ttile_t tile =
                TIFFComputeTile(t, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), 0, 0);
            tiff.clearError();
            if (TIFFReadEncodedTile(t, tile, tileSamples, tileBytes) != tileBytes)
                return false;
            // Edge tiles are padded: copy only the part inside the image.
            for (std::size_t r = 0; r < rows; ++r) {
                const std::uint8_t* source = tileSamples + r * tileWidth * sampleBytes;
                std::uint16_t* target = out.data() + (y + r) * width + x;
                if (sampleBytes == 2)
                    std::memcpy(target, source, columns * 2);
                else
                    widen(source, target, columns);
            }
        }
    }
    return true;
}

} // namespace zarvi
