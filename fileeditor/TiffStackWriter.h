#pragma once

#include <QFile>
#include <QString>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace zarvi {

class WriteBehind;

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
/// the export of a whole image stack or a range of its frames. Every page has the same
/// size, so where each one starts is known before it is written: a page (its directory,
/// then its samples as one strip) goes to the file in a single write as soon as its
/// frame is given, on a second thread while the caller fills the next page: memory holds
/// two pages, whatever the stack's size. An existing
/// empty file (an export's temporary file) is written into as it is, without the
/// truncation that makes some file systems flush it on close.
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
    /// Where the next page's samples go, for a caller that reads a frame of 16-bit
    /// little-endian values straight in and then calls writeFilledFrame(), which saves
    /// copying every frame once more. Null when the samples need converting (8-bit
    /// output, a big-endian host) or the file is not open.
    void* frameSlot();
    /// Appends the frame the caller put in frameSlot().
    bool writeFilledFrame();
    /// Writes every frame not yet written on two threads, each filling and writing every
    /// other page: `fill(k, samples)` puts frame k where frameSlot() would, and is called
    /// on both threads at once for different frames. `keepGoing(done)` is called on this
    /// thread between its frames with about the count written so far. Either stops the
    /// writing by returning false, and then gives its own reason; lastError() is set only
    /// when a write failed. Only where frameSlot() is offered.
    bool writeFramesOnBothCores(const std::function<bool(std::size_t frame, void* samples)>& fill,
                                const std::function<bool(std::size_t done)>& keepGoing);
    /// Closes the file; false when it could not be completed or fewer frames than
    /// announced were written.
    bool finish();

    bool isBigTiff() const { return m_bigTiff; }
    std::size_t framesWritten() const { return m_framesWritten; }
    QString lastError() const { return m_error; }

private:
    bool fail(const QString& message);
    /// Lays out the directory of every page in m_pages; placePage() only sets where
    /// the page starts and its samples.
    void buildPage();
    /// The page the next frame goes into.
    std::vector<std::uint8_t>& fillingPage() { return m_pages[m_framesWritten % 2]; }
    /// False, with lastError() set, when no further frame can be appended.
    bool canAppend();
    /// Sets the offsets in `page` for frame k; returns where the page starts in the file.
    std::uint64_t placePage(std::vector<std::uint8_t>& page, std::size_t k) const;
    /// Sets the page's offsets for the next frame and starts writing the page.
    bool writePage();
    /// Waits for the pages being written; false with lastError() set when one failed.
    bool finishWrites();

    TiffStackWriterConfig m_config;
    QFile m_file;
    bool m_bigTiff = false;
    std::size_t m_framesWritten = 0;
    /// Bytes before the first page: the file header.
    std::uint64_t m_headerBytes = 0;
    /// Bytes of the directory and its values at the start of every page.
    std::size_t m_directoryBytes = 0;
    /// Two whole pages, directory and samples: one is written while the next is filled.
    std::array<std::vector<std::uint8_t>, 2> m_pages;
    /// Where in a page the values that change from page to page lie.
    std::size_t m_nextDirectoryAt = 0;
    std::size_t m_stripOffsetAt = 0;
    /// The Software entry's offset field, 0 when the text fits in the entry itself.
    std::size_t m_softwareValueAt = 0;
    std::size_t m_softwareAt = 0;
    QString m_error;
    /// Writes the pages; destroyed before the pages and the file, which it waits for.
    std::unique_ptr<WriteBehind> m_writeBehind;
};

} // namespace zarvi
