#include "fileeditor/TiffStackWriter.h"

#include <algorithm>
#include <cstring>

#include "definitions/FileDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/TiffHandle.h"

namespace zarvi {

namespace {

using Texts = FileEditorOperationDefinitions;

/// Strips of about this size keep libtiff's per-strip overhead small without a large buffer.
constexpr std::size_t StripBytes = 256 * 1024;
/// Hard limit of a classic TIFF file: 32-bit offsets.
constexpr std::uint64_t ClassicMaximumBytes = 0xFFFFFFFFULL;

/// Saturates 16-bit samples into 8-bit ones. Written in fixed blocks over unaliased
/// pointers, which is what GCC needs to vectorise it at -O2.
void narrow(const std::uint16_t* __restrict source, std::uint8_t* __restrict target, std::size_t count)
{
    constexpr std::size_t Block = 32;
    std::size_t i = 0;
    for (; i + Block <= count; i += Block) {
        for (std::size_t j = 0; j < Block; ++j)
            target[i + j] = static_cast<std::uint8_t>(std::min<std::uint16_t>(source[i + j], 255));
    }
    for (; i < count; ++i)
        target[i] = static_cast<std::uint8_t>(std::min<std::uint16_t>(source[i], 255));
}

} // namespace

TiffStackWriter::TiffStackWriter() = default;

TiffStackWriter::~TiffStackWriter() = default;

bool TiffStackWriter::open(const TiffStackWriterConfig& config)
{
    m_tiff.reset();
    m_config = config;
    m_framesWritten = 0;
    m_error.clear();
    if (config.width <= 0 || config.height <= 0)
        return fail(Texts::invalidFrameSizeMessage().arg(config.width).arg(config.height));
    if (config.bitsPerSample != 8 && config.bitsPerSample != 16)
        return fail(Texts::writeBitDepthMessage().arg(config.bitsPerSample));
    if (config.frameCount == 0)
        return fail(Texts::noFramesMessage());

    const std::size_t rowBytes = static_cast<std::size_t>(config.width) * (config.bitsPerSample / 8);
    m_rowsPerStrip = static_cast<std::uint32_t>(
        std::clamp<std::size_t>(StripBytes / rowBytes, 1, static_cast<std::size_t>(config.height)));
    const std::uint64_t strips = (config.height + m_rowsPerStrip - 1) / m_rowsPerStrip;
    // Pixels plus a generous page directory (tags, strip offsets and byte counts).
    const std::uint64_t pageBytes = rowBytes * config.height + 512 + 16 * strips;
    const std::uint64_t totalBytes = pageBytes * config.frameCount + 16;

    switch (config.container) {
    case TiffContainer::Automatic:
        m_bigTiff = totalBytes > ClassicLimitBytes;
        break;
    case TiffContainer::Classic:
        if (totalBytes > ClassicMaximumBytes)
            return fail(Texts::classicTiffTooLargeMessage().arg(totalBytes / 1e9, 0, 'f', 1));
        m_bigTiff = false;
        break;
    case TiffContainer::Big:
        m_bigTiff = true;
        break;
    }

    m_tiff = std::make_unique<TiffHandle>();
    if (!m_tiff->open(config.path, m_bigTiff ? "w8" : "w")) {
        const QString reason = m_tiff->lastError();
        m_tiff.reset();
        return fail(Texts::unableToCreateMessage().arg(config.path, reason));
    }
    m_strip.resize(static_cast<std::size_t>(m_rowsPerStrip) * rowBytes);
    return true;
}

bool TiffStackWriter::writeFrame(std::span<const std::uint16_t> frame)
{
    if (!m_tiff)
        return fail(Texts::notOpenMessage());
    if (m_framesWritten >= m_config.frameCount)
        return fail(Texts::tooManyFramesMessage().arg(m_config.path).arg(m_config.frameCount));
    const auto width = static_cast<std::size_t>(m_config.width);
    const auto height = static_cast<std::size_t>(m_config.height);
    if (frame.size() != width * height)
        return fail(Texts::frameBufferSizeMessage().arg(frame.size()).arg(width * height));

    TIFF* t = m_tiff->get();
    TIFFSetField(t, TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
    TIFFSetField(t, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(width));
    TIFFSetField(t, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(height));
    TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, static_cast<std::uint16_t>(m_config.bitsPerSample));
    TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, static_cast<std::uint16_t>(1));
    TIFFSetField(t, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    TIFFSetField(t, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(t, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(t, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    TIFFSetField(t, TIFFTAG_ROWSPERSTRIP, m_rowsPerStrip);
    const QByteArray software =
        (FileDefinitions::SoftwareNameValue + QLatin1Char(' ') + FileDefinitions::SoftwareVersionValue)
            .toUtf8();
    TIFFSetField(t, TIFFTAG_SOFTWARE, software.constData());

    const bool wide = m_config.bitsPerSample == 16;
    m_tiff->clearError();
    for (std::size_t row = 0; row < height; row += m_rowsPerStrip) {
        const std::size_t values = std::min<std::size_t>(m_rowsPerStrip, height - row) * width;
        const std::uint16_t* source = frame.data() + row * width;
        // Copied, because libtiff may swap or encode the buffer it is given in place.
        if (wide)
            std::memcpy(m_strip.data(), source, values * 2);
        else
            narrow(source, m_strip.data(), values);
        const auto bytes = static_cast<tmsize_t>(values * (wide ? 2 : 1));
        const tstrip_t strip = TIFFComputeStrip(t, static_cast<std::uint32_t>(row), 0);
        if (TIFFWriteEncodedStrip(t, strip, m_strip.data(), bytes) != bytes)
            return fail(Texts::unableToWriteMessage().arg(m_config.path, m_tiff->lastError()));
    }
    if (!TIFFWriteDirectory(t))
        return fail(Texts::unableToWriteMessage().arg(m_config.path, m_tiff->lastError()));
    ++m_framesWritten;
    return true;
}

bool TiffStackWriter::finish()
{
    if (!m_tiff)
        return fail(Texts::notOpenMessage());
    const bool closed = m_tiff->close();
    const QString reason = m_tiff->lastError();
    m_tiff.reset();
    if (!closed)
        return fail(Texts::unableToWriteMessage().arg(m_config.path, reason));
    if (m_framesWritten != m_config.frameCount) {
        return fail(
            Texts::missingFramesMessage().arg(m_framesWritten).arg(m_config.frameCount).arg(m_config.path));
    }
    return true;
}

bool TiffStackWriter::fail(const QString& message)
{
    m_error = message;
    return false;
}

} // namespace zarvi
