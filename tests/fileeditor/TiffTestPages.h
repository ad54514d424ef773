#pragma once

#include <QFile>
#include <QString>

#include <cstdint>
#include <vector>

#include <tiffio.h>

namespace zarvi::test {

/// A test frame whose pixels all differ from their neighbours and from the same pixel
/// of other frames, covering the whole range of the bit depth.
inline std::vector<std::uint16_t> testFrame(int width, int height, int k, int bits = 16)
{
    const std::uint32_t mask = bits == 8 ? 0xFFu : 0xFFFFu;
    std::vector<std::uint16_t> frame(static_cast<std::size_t>(width) * height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const std::uint32_t value = static_cast<std::uint32_t>(x) * 977u +
                                        static_cast<std::uint32_t>(y) * 131u +
                                        static_cast<std::uint32_t>(k) * 7919u + 12345u;
            frame[static_cast<std::size_t>(y) * width + x] = static_cast<std::uint16_t>(value & mask);
        }
    }
    return frame;
}

struct PageLayout
{
    int width = 0;
    int height = 0;
    int bits = 16;
    int samples = 1;
    int photometric = PHOTOMETRIC_MINISBLACK;
    int sampleFormat = SAMPLEFORMAT_UINT;
};

/// Writes one uncompressed page with libtiff directly, as an acquisition program would.
/// data holds width * height * samples samples of layout.bits bits each.
inline bool writeTiffPage(const QString& path, const PageLayout& layout, const void* data)
{
    TIFF* tiff = TIFFOpen(QFile::encodeName(path).constData(), "w");
    if (!tiff)
        return false;
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(layout.width));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(layout.height));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, static_cast<std::uint16_t>(layout.bits));
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, static_cast<std::uint16_t>(layout.samples));
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, static_cast<std::uint16_t>(layout.sampleFormat));
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, static_cast<std::uint16_t>(layout.photometric));
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(layout.height));
    const auto bytes = static_cast<tmsize_t>(layout.width) * layout.height * layout.samples * layout.bits / 8;
    const bool ok = TIFFWriteEncodedStrip(tiff, 0, const_cast<void*>(data), bytes) == bytes;
    TIFFClose(tiff);
    return ok;
}

/// A 16-bit greyscale page of testFrame(width, height, k).
inline bool writeGreyPage(const QString& path, int width, int height, int k)
{
    const std::vector<std::uint16_t> frame = testFrame(width, height, k);
    return writeTiffPage(path, PageLayout{width, height}, frame.data());
}

} // namespace zarvi::test
