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

/// Writes, byte by byte, a stack laid out as ImageJ writes one beyond 4 GB: a single
/// page whose description announces `announced` images, its 16-bit samples at the end
/// of the file, and the samples of frames 1 .. held-1 following them back to back.
/// Frame k holds testFrame(width, height, k); `bigEndian` picks the file's byte order.
inline bool writeImageJStack(const QString& path, int width, int height, int announced, int held,
                             bool bigEndian)
{
    QByteArray bytes;
    const auto put = [&](std::uint64_t value, int size) {
        for (int i = 0; i < size; ++i) {
            const int shift = 8 * (bigEndian ? size - 1 - i : i);
            bytes.append(static_cast<char>((value >> shift) & 0xFF));
        }
    };
    const QByteArray description =
        QStringLiteral("ImageJ=1.54f\nimages=%1\nslices=%1\nloop=false\n").arg(announced).toLatin1() + '\0';
    constexpr int entries = 10;
    const int ifdEnd = 8 + 2 + entries * 12 + 4;
    const int descriptionAt = ifdEnd;
    const int pixelsAt = descriptionAt + static_cast<int>(description.size()) + (description.size() % 2);
    const int frameBytes = width * height * 2;
    bytes.append(bigEndian ? "MM" : "II");
    put(42, 2);
    put(8, 4);
    put(entries, 2);
    const auto entry = [&](int tag, int type, int count, std::uint32_t value) {
        put(tag, 2);
        put(type, 2);
        put(count, 4);
        if (type == 3 && count == 1) { // a SHORT sits in the first two bytes of the field
            put(value, 2);
            put(0, 2);
        } else {
            put(value, 4);
        }
    };
    entry(256, 4, 1, width);
    entry(257, 4, 1, height);
    entry(258, 3, 1, 16);
    entry(259, 3, 1, 1);
    entry(262, 3, 1, 1);
    entry(270, 2, static_cast<int>(description.size()), descriptionAt);
    entry(273, 4, 1, pixelsAt);
    entry(277, 3, 1, 1);
    entry(278, 4, 1, height);
    entry(279, 4, 1, frameBytes);
    put(0, 4);
    bytes.append(description);
    if (description.size() % 2)
        bytes.append('\0');
    for (int k = 0; k < held; ++k)
        for (const std::uint16_t value : testFrame(width, height, k))
            put(value, 2);
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace zarvi::test
