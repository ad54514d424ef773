#pragma once

#include <QFile>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "datafile/Feedback.h"
#include "fileeditor/TiffPageDecoder.h"

#include <tiffio.h>

namespace zarvi {

class TiffHandle;

struct TiffStackReaderConfig
{
    /// A multi-page TIFF file, or a folder whose .tif/.tiff files are single pages of one
    /// stack, taken in natural name order (img2 before img10).
    QString path;
};

/// What open() found: the stack's geometry, or why it cannot be read.
struct TiffStackInfo
{
    int width = 0;
    int height = 0;
    std::size_t frameCount = 0;
    /// Bits per sample as stored, 8 or 16: the stack's "BitCount".
    int bitsPerSample = 0;
    /// The file, or the folder's page files in reading order.
    QStringList files;
    /// What the user should know of a stack that was read anyway (frames missing).
    QString warning;
    QString error;
    bool canceled = false;

    bool ok() const { return error.isEmpty(); }
    std::size_t pixelsPerFrame() const
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }
};

/// Streams a greyscale TIFF stack frame by frame into a caller-owned 16-bit buffer,
/// so that stacks larger than memory (BigTIFF included) convert with one frame in
/// memory. open() checks every page up front, so a stack with an RGB page or pages of
/// different sizes is refused before anything is converted; readFrame() then decodes
/// one page (strips or tiles, any compression libtiff knows), widening 8-bit samples
/// to 16 bits without changing their value. Samples are taken as stored: a page that
/// declares 0 as white is not inverted. An ImageJ stack whose file holds one page but
/// whose description announces more images is read as ImageJ writes stacks beyond
/// 4 GB: uncompressed frames following the first image back to back; the frames the
/// file holds are read, and a warning says when they are fewer than announced. Lives
/// on the worker thread of the conversion;
/// one object is used by one thread at a time.
class TiffStackReader
{
public:
    TiffStackReader();
    ~TiffStackReader();
    TiffStackReader(const TiffStackReader&) = delete;
    TiffStackReader& operator=(const TiffStackReader&) = delete;

    /// Opens and checks the stack; progress runs over its pages, and cancelling
    /// returns an info with canceled set.
    TiffStackInfo open(const TiffStackReaderConfig& config, Feedback* feedback = nullptr);
    const TiffStackInfo& info() const { return m_info; }

    /// Reads frame k (from 0) into out, row by row: pixel (x, y) lands in out[y * width + x].
    /// out must hold exactly width * height values. False with lastError() set on failure.
    bool readFrame(std::size_t k, std::span<std::uint16_t> out);
    QString lastError() const { return m_error; }

    void close();

private:
    bool scanMultiPage(const QString& path, Feedback* feedback);
    bool scanFolder(const QString& path, Feedback* feedback);
    /// After a one-page scan: takes the frames an ImageJ description announces when they
    /// can follow the first image back to back. False only on a read error.
    bool findContiguousFrames(const QString& path);
    /// Reads frame k from uncompressed samples that start at offset, with one read.
    bool readRawFrame(std::size_t k, std::uint64_t offset, std::span<std::uint16_t> out);
    /// Checks the current page of tiff: greyscale, unsigned, 8 or 16 bits, and (after the
    /// first page) the same size and depth as the first. page (from 0) names it in messages.
    bool checkPage(TiffHandle& tiff, std::size_t page, bool first);
    /// Checks what the current page declares against the bytes its file holds and the
    /// memory a frame needs, before anything is allocated for it; on a multi-page file
    /// also notes where the page's samples lie when they are one uncompressed block.
    bool checkDeclaredBytes(TIFF* tiff, std::size_t page, std::uint32_t width, std::uint32_t height,
                            std::uint16_t bits);
    /// "Page 3 of <b>stack.tif</b>", or "<b>img3.tif</b>" in a folder.
    QString pageLocation(std::size_t page) const;
    QString readError(std::size_t page, const TiffHandle& tiff) const;
    bool fail(const QString& message);

    TiffStackInfo m_info;
    bool m_folder = false;
    /// Offsets of the pages' directories in a multi-page file, for direct access.
    std::vector<std::uint64_t> m_pageOffsets;
    /// Where each page's samples lie when they are one uncompressed block, so a frame is
    /// one read; offset 0 where they are not.
    struct Block
    {
        std::uint64_t offset = 0;
        std::uint64_t bytes = 0;
    };
    std::vector<Block> m_pageBlocks;
    /// The size of the file being checked, for the declared sizes.
    std::uint64_t m_fileSize = 0;
    /// Where the first frame of a contiguous ImageJ stack starts; 0 for other stacks.
    std::uint64_t m_contiguousStart = 0;
    /// The samples are stored in the other byte order than this machine's.
    bool m_swapBytes = false;
    std::unique_ptr<QFile> m_raw;
    std::unique_ptr<TiffHandle> m_tiff;
    std::size_t m_currentPage = 0;
    TiffPageDecoder m_decoder;
    QString m_error;
};

} // namespace zarvi
