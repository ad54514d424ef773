#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace zarvi {

class TiffHandle;

/// Which TIFF variant a stack is written as.
enum class TiffContainer
{
    /// Classic TIFF while the stack fits comfortably, BigTIFF beyond.
    Automatic,
    /// Classic TIFF (32-bit offsets), readable by every program; refused above 4 GB.
    Classic,
    /// BigTIFF (64-bit offsets), for any size.
    Big
};

struct TiffStackWriterConfig
{
    QString path;
    int width = 0;
    int height = 0;
    /// 16, or 8 for viewers that want 8-bit images; 16-bit values above 255 then saturate.
    int bitsPerSample = 16;
    /// Frames that will be written; decides the container and is checked by finish().
    std::size_t frameCount = 0;
    TiffContainer container = TiffContainer::Automatic;
};

/// Writes a greyscale stack as a multi-page, uncompressed TIFF, one frame at a time, for
/// the export of a whole image stack or a range of its frames. Each frame is written
/// as soon as it is given, so memory holds one strip, whatever the stack's size.
/// Lives on the worker thread of the export; one object is used by one thread at a time.
class TiffStackWriter
{
public:
    /// Largest stack, in bytes, that Automatic still writes as classic TIFF: below the
    /// 4 GiB limit of 32-bit offsets with room for the page directories.
    static constexpr std::uint64_t ClassicLimitBytes = 3'900'000'000ULL;

    TiffStackWriter();
    ~TiffStackWriter();
    TiffStackWriter(const TiffStackWriter&) = delete;
    TiffStackWriter& operator=(const TiffStackWriter&) = delete;

    /// Creates the file (replacing an existing one). False with lastError() set when the
    /// configuration is invalid or the file cannot be created.
    bool open(const TiffStackWriterConfig& config);
    /// Appends one frame of width * height values, row by row (pixel (x, y) at y * width + x).
    bool writeFrame(std::span<const std::uint16_t> frame);
    /// Closes the file; false when it could not be completed or fewer frames than
    /// announced were written.
    bool finish();

    bool isBigTiff() const { return m_bigTiff; }
    std::size_t framesWritten() const { return m_framesWritten; }
    QString lastError() const { return m_error; }

private:
    bool fail(const QString& message);

    TiffStackWriterConfig m_config;
    std::unique_ptr<TiffHandle> m_tiff;
    bool m_bigTiff = false;
    std::uint32_t m_rowsPerStrip = 1;
    std::size_t m_framesWritten = 0;
    std::vector<std::uint8_t> m_strip;
    QString m_error;
};

} // namespace zarvi
