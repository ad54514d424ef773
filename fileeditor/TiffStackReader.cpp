#include "fileeditor/TiffStackReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>

#include <unistd.h>

#include "datafile/MemoryBudget.h"
#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/NaturalNameOrder.h"
#include "fileeditor/TiffHandle.h"

namespace zarvi {

namespace {

using Texts = FileEditorOperationDefinitions;

/// An empty text when path starts like a TIFF or BigTIFF file, else the message why not.
QString tiffSignatureError(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Texts::unableToOpenMessage().arg(path);
    char head[4] = {};
    if (file.read(head, 4) != 4)
        return Texts::notTiffMessage().arg(path);
    const bool little = head[0] == 'I' && head[1] == 'I' && (head[2] == 42 || head[2] == 43) && head[3] == 0;
    const bool big = head[0] == 'M' && head[1] == 'M' && head[2] == 0 && (head[3] == 42 || head[3] == 43);
    return little || big ? QString() : Texts::notTiffMessage().arg(path);
}

QString bold(const QString& text)
{
    return QStringLiteral("<b>%1</b>").arg(text);
}

/// The number of images an ImageJ description ("ImageJ=1.54f\nimages=3500\n...")
/// announces; 0 for any other description.
std::size_t imageJImageCount(const QString& description)
{
    const QStringList lines = description.split(QLatin1Char('\n'));
    if (!lines.constFirst().startsWith(QLatin1String("ImageJ=")))
        return 0;
    for (const QString& line : lines) {
        if (line.startsWith(QLatin1String("images=")))
            return line.mid(7).trimmed().toULongLong();
    }
    return 0;
}

/// The most a compressed block can expand when decoded. Far beyond what the usual
/// compressions reach on real images, yet enough to refuse a few bytes that claim
/// gigabytes of pixels.
constexpr std::uint64_t MaxExpansion = 1u << 16;

QString readErrorText(const QString& where, const TiffHandle& tiff)
{
    const QString reason = tiff.lastError().isEmpty() ? Texts::incompleteImageText() : tiff.lastError();
    return Texts::tiffReadErrorMessage().arg(where, reason);
}

} // namespace

TiffStackReader::TiffStackReader() = default;

TiffStackReader::~TiffStackReader() = default;

TiffStackInfo TiffStackReader::open(const TiffStackReaderConfig& config, Feedback* feedback)
{
    close();
    const QFileInfo location(config.path);
    bool ok = false;
    if (!location.exists()) {
        fail(Texts::missingFileMessage().arg(config.path));
    } else if (location.isDir()) {
        m_folder = true;
        ok = scanFolder(location.absoluteFilePath(), feedback);
    } else {
        m_info.files = QStringList{location.absoluteFilePath()};
        const QString signature = tiffSignatureError(config.path);
        ok = signature.isEmpty() ? scanMultiPage(config.path, feedback) : fail(signature);
    }
    if (!ok) {
        const QString error = m_error;
        const bool canceled = m_info.canceled;
        close();
        m_error = error;
        m_info.error = error;
        m_info.canceled = canceled;
    }
    return m_info;
}

void TiffStackReader::close()
{
    m_tiff.reset();
    m_info = TiffStackInfo();
    m_folder = false;
    m_pageOffsets.clear();
    m_pageBlocks.clear();
    m_fileSize = 0;
    m_contiguousStart = 0;
    m_swapBytes = false;
    m_raw.reset();
    m_currentPage = 0;
    m_error.clear();
}

bool TiffStackReader::scanMultiPage(const QString& path, Feedback* feedback)
{
    m_tiff = std::make_unique<TiffHandle>();
    if (!m_tiff->open(path, "rm"))
        return fail(Texts::tiffReadErrorMessage().arg(bold(path), m_tiff->lastError()));
    TIFF* tiff = m_tiff->get();
    // Walks only the chain of directory offsets, so the count is cheap even for BigTIFF.
    const tdir_t pages = TIFFNumberOfDirectories(tiff);
    ProgressTracker progress(feedback, pages);
    m_pageOffsets.reserve(pages);
    m_pageBlocks.reserve(pages);
    m_fileSize = static_cast<std::uint64_t>(QFileInfo(path).size());
    m_swapBytes = TIFFIsByteSwapped(tiff) != 0;
    for (std::size_t k = 0;; ++k) {
        if (progress.isCanceled()) {
            m_info.canceled = true;
            return fail(Texts::canceledMessage());
        }
        m_pageOffsets.push_back(TIFFCurrentDirOffset(tiff));
        if (!checkPage(*m_tiff, k, k == 0))
            return false;
        progress.update(k + 1);
        if (TIFFLastDirectory(tiff))
            break;
        if (!TIFFReadDirectory(tiff))
            return fail(readErrorText(pageLocation(k + 1), *m_tiff));
    }
    m_currentPage = m_pageOffsets.size() - 1;
    m_info.frameCount = m_pageOffsets.size();
    const bool anyBlock =
        std::any_of(m_pageBlocks.begin(), m_pageBlocks.end(), [](const Block& b) { return b.offset != 0; });
    if (anyBlock) {
        m_raw = std::make_unique<QFile>(path);
        if (!m_raw->open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            return fail(Texts::unableToOpenMessage().arg(path));
    }
    return m_info.frameCount != 1 || findContiguousFrames(path);
}

bool TiffStackReader::findContiguousFrames(const QString& path)
{
    TIFF* t = m_tiff->get();
    const char* description = nullptr;
    if (!TIFFGetField(t, TIFFTAG_IMAGEDESCRIPTION, &description) || !description)
        return true;
    const std::size_t announced = imageJImageCount(QString::fromUtf8(description));
    std::uint16_t compression = COMPRESSION_NONE;
    TIFFGetFieldDefaulted(t, TIFFTAG_COMPRESSION, &compression);
    if (announced < 2 || compression != COMPRESSION_NONE || TIFFIsTiled(t))
        return true;
    // The first image must be one block of uncompressed samples for the others to follow it.
    const std::uint64_t* offsets = nullptr;
    const std::uint64_t* counts = nullptr;
    if (!TIFFGetField(t, TIFFTAG_STRIPOFFSETS, &offsets) ||
        !TIFFGetField(t, TIFFTAG_STRIPBYTECOUNTS, &counts) || !offsets || !counts)
        return true;
    const std::uint64_t frameBytes =
        m_info.pixelsPerFrame() * static_cast<std::uint64_t>(m_info.bitsPerSample / 8);
    std::uint64_t end = offsets[0];
    for (tstrip_t s = 0; s < TIFFNumberOfStrips(t); ++s) {
        if (offsets[s] != end)
            return true;
        end += counts[s];
    }
    if (end - offsets[0] != frameBytes)
        return true;

    m_raw = std::make_unique<QFile>(path);
    if (!m_raw->open(QIODevice::ReadOnly))
        return fail(Texts::unableToOpenMessage().arg(path));
    const auto size = static_cast<std::uint64_t>(m_raw->size());
    const std::uint64_t held = size > offsets[0] ? (size - offsets[0]) / frameBytes : 0;
    m_contiguousStart = offsets[0];
    m_swapBytes = TIFFIsByteSwapped(t) != 0;
    m_info.frameCount = static_cast<std::size_t>(std::min<std::uint64_t>(announced, held));
    if (m_info.frameCount < announced)
        m_info.warning =
            Texts::fewerFramesMessage().arg(QFileInfo(path).fileName()).arg(announced).arg(m_info.frameCount);
    return true;
}

bool TiffStackReader::scanFolder(const QString& path, Feedback* feedback)
{
    const QDir folder(path);
    QStringList names =
        folder.entryList({QStringLiteral("*.tif"), QStringLiteral("*.tiff")}, QDir::Files, QDir::NoSort);
    if (names.isEmpty())
        return fail(Texts::emptyTiffFolderMessage().arg(path));
    std::sort(names.begin(), names.end(), naturalNameLess);
    for (const QString& name : names)
        m_info.files.append(folder.filePath(name));

    ProgressTracker progress(feedback, names.size());
    for (qsizetype k = 0; k < m_info.files.size(); ++k) {
        if (progress.isCanceled()) {
            m_info.canceled = true;
            return fail(Texts::canceledMessage());
        }
        const QString& file = m_info.files[k];
        const QString signature = tiffSignatureError(file);
        if (!signature.isEmpty())
            return fail(signature);
        TiffHandle tiff;
        if (!tiff.open(file, "r"))
            return fail(Texts::tiffReadErrorMessage().arg(bold(file), tiff.lastError()));
        m_fileSize = static_cast<std::uint64_t>(QFileInfo(file).size());
        const tdir_t pages = TIFFNumberOfDirectories(tiff.get());
        if (pages != 1)
            return fail(Texts::multiPageInFolderMessage().arg(file).arg(pages));
        if (!checkPage(tiff, static_cast<std::size_t>(k), k == 0))
            return false;
        progress.update(k + 1);
    }
    m_info.frameCount = m_info.files.size();
    return true;
}

bool TiffStackReader::checkPage(TiffHandle& tiff, std::size_t page, bool first)
{
    TIFF* t = tiff.get();
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t samples = 1;
    std::uint16_t bits = 1;
    std::uint16_t format = SAMPLEFORMAT_UINT;
    std::uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    TIFFGetField(t, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(t, TIFFTAG_IMAGELENGTH, &height);
    TIFFGetFieldDefaulted(t, TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetFieldDefaulted(t, TIFFTAG_BITSPERSAMPLE, &bits);
    TIFFGetFieldDefaulted(t, TIFFTAG_SAMPLEFORMAT, &format);
    // A page without a photometric tag is read as greyscale, as most readers do.
    TIFFGetField(t, TIFFTAG_PHOTOMETRIC, &photometric);

    if (photometric == PHOTOMETRIC_RGB || photometric == PHOTOMETRIC_YCBCR)
        return fail(Texts::rgbImageMessage().arg(pageLocation(page)));
    if (samples != 1)
        return fail(Texts::multiSampleMessage().arg(pageLocation(page)).arg(samples));
    if (photometric == PHOTOMETRIC_PALETTE)
        return fail(Texts::paletteImageMessage().arg(pageLocation(page)));
    if (format == SAMPLEFORMAT_IEEEFP || format == SAMPLEFORMAT_COMPLEXIEEEFP)
        return fail(Texts::floatSamplesMessage().arg(pageLocation(page)));
    if (format == SAMPLEFORMAT_INT || format == SAMPLEFORMAT_COMPLEXINT)
        return fail(Texts::signedSamplesMessage().arg(pageLocation(page)));
    if (bits != 8 && bits != 16)
        return fail(Texts::bitDepthMessage().arg(pageLocation(page)).arg(bits));
    // Frames are addressed with int sizes further on (HDF5 attributes, cv::Mat).
    constexpr std::uint32_t largest = 1u << 30;
    if (width == 0 || height == 0 || width > largest || height > largest)
        return fail(Texts::noPixelsMessage().arg(pageLocation(page)).arg(width).arg(height));
    if (!checkDeclaredBytes(t, page, width, height, bits))
        return false;

    if (first) {
        m_info.width = static_cast<int>(width);
        m_info.height = static_cast<int>(height);
        m_info.bitsPerSample = bits;
        return true;
    }
    if (static_cast<int>(width) != m_info.width || static_cast<int>(height) != m_info.height) {
        return fail(Texts::mixedFrameSizeMessage()
                        .arg(pageLocation(page))
                        .arg(width)
                        .arg(height)
                        .arg(m_info.width)
                        .arg(m_info.height));
    }
    if (bits != m_info.bitsPerSample)
        return fail(
            Texts::mixedBitDepthMessage().arg(pageLocation(page)).arg(bits).arg(m_info.bitsPerSample));
    return true;
}

bool TiffStackReader::readFrame(std::size_t k, std::span<std::uint16_t> out)
{
    m_error.clear();
    if (m_info.frameCount == 0)
        return fail(Texts::notOpenMessage());
    if (k >= m_info.frameCount)
        return fail(Texts::frameOutOfRangeMessage().arg(k + 1).arg(m_info.frameCount));
    if (out.size() != m_info.pixelsPerFrame())
        return fail(Texts::frameBufferSizeMessage().arg(out.size()).arg(m_info.pixelsPerFrame()));

    if (m_contiguousStart > 0)
        return readRawFrame(k, m_contiguousStart + k * out.size() * (m_info.bitsPerSample / 8), out);
    if (k < m_pageBlocks.size() && m_pageBlocks[k].offset != 0 && m_raw)
        return readRawFrame(k, m_pageBlocks[k].offset, out);
    TiffHandle single;
    TiffHandle* tiff = m_tiff.get();
    if (m_folder) {
        const QString& file = m_info.files[static_cast<qsizetype>(k)];
        if (!single.open(file, "rm"))
            return fail(readError(k, single));
        m_fileSize = static_cast<std::uint64_t>(QFileInfo(file).size());
        tiff = &single;
    } else if (k != m_currentPage) {
        // Direct jump to the page's directory: reading in any order costs the same.
        if (!TIFFSetSubDirectory(tiff->get(), m_pageOffsets[k])) {
            m_currentPage = m_pageOffsets.size();
            return fail(readError(k, *tiff));
        }
        m_currentPage = k;
    }
    // The file may have changed since open(); a page that no longer fits is refused.
    if (!checkPage(*tiff, k, false))
        return false;
    if (!m_decoder.decode(*tiff, static_cast<std::size_t>(m_info.width),
                          static_cast<std::size_t>(m_info.height), m_info.bitsPerSample, out))
        return fail(readError(k, *tiff));
    return true;
}

bool TiffStackReader::readRawFrame(std::size_t k, std::uint64_t offset, std::span<std::uint16_t> out)
{
    const std::size_t bytes = out.size() * static_cast<std::size_t>(m_info.bitsPerSample / 8);
    char* buffer = m_decoder.rawTarget(out, m_info.bitsPerSample);
    // One positioned read for the whole frame; the loop only continues a short read, and
    // a frame the file ends inside is refused.
    std::size_t done = 0;
    while (done < bytes) {
        const ssize_t got =
            ::pread(m_raw->handle(), buffer + done, bytes - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return fail(Texts::tiffReadErrorMessage().arg(pageLocation(k), Texts::incompleteImageText()));
        done += static_cast<std::size_t>(got);
    }
    m_decoder.finishRaw(out, m_info.bitsPerSample, m_swapBytes);
    return true;
}

bool TiffStackReader::checkDeclaredBytes(TIFF* t, std::size_t page, std::uint32_t width, std::uint32_t height,
                                         std::uint16_t bits)
{
    const bool tiled = TIFFIsTiled(t) != 0;
    const std::uint64_t sampleBytes = bits / 8;
    std::uint32_t blockWidth = width;
    std::uint32_t blockRows = 0;
    if (tiled) {
        TIFFGetField(t, TIFFTAG_TILEWIDTH, &blockWidth);
        TIFFGetField(t, TIFFTAG_TILELENGTH, &blockRows);
    } else {
        TIFFGetFieldDefaulted(t, TIFFTAG_ROWSPERSTRIP, &blockRows);
        blockRows = std::min(blockRows, height);
    }
    std::uint16_t compression = COMPRESSION_NONE;
    TIFFGetFieldDefaulted(t, TIFFTAG_COMPRESSION, &compression);
    const std::uint64_t expansion = compression == COMPRESSION_NONE ? 1 : MaxExpansion;
    const std::uint64_t* offsets = nullptr;
    const std::uint64_t* counts = nullptr;
    const std::uint64_t blocks = tiled ? TIFFNumberOfTiles(t) : TIFFNumberOfStrips(t);
    if (blockWidth == 0 || blockRows == 0 || blocks == 0 ||
        !TIFFGetField(t, tiled ? TIFFTAG_TILEOFFSETS : TIFFTAG_STRIPOFFSETS, &offsets) ||
        !TIFFGetField(t, tiled ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS, &counts) || !offsets ||
        !counts)
        return fail(Texts::tiffReadErrorMessage().arg(pageLocation(page), Texts::incompleteImageText()));

    // Every block must lie inside the file and hold, decoded, the samples it covers:
    // a whole tile, or the rows of a strip (the last one may be shorter).
    const std::uint64_t rowBytes = MemoryBudget::product({blockWidth, sampleBytes});
    std::uint64_t declared = 0;
    bool oneBlock = compression == COMPRESSION_NONE && !tiled;
    for (std::uint64_t b = 0; b < blocks; ++b) {
        const std::uint64_t rows =
            tiled
                ? blockRows
                : std::min<std::uint64_t>(blockRows, height - std::min<std::uint64_t>(height, b * blockRows));
        const std::uint64_t decoded = MemoryBudget::product({rowBytes, rows});
        declared = std::max(declared, decoded);
        if (offsets[b] > m_fileSize || counts[b] > m_fileSize - offsets[b] ||
            MemoryBudget::product({counts[b], expansion}) < decoded) {
            const std::uint64_t frameSamples = static_cast<std::uint64_t>(width) * height * sampleBytes;
            const std::uint64_t shown = std::max({decoded, counts[b], frameSamples});
            return fail(
                Texts::declaredBeyondFileMessage().arg(pageLocation(page)).arg(shown).arg(m_fileSize));
        }
        oneBlock = oneBlock && (b == 0 || offsets[b] == offsets[b - 1] + counts[b - 1]);
    }
    // The frame as it is handed on (16 bits a sample) and the largest decoded block.
    const std::uint64_t frameBytes = MemoryBudget::product({width, height, 2});
    const std::uint64_t needed = frameBytes > UINT64_MAX - declared ? UINT64_MAX : frameBytes + declared;
    const std::uint64_t memory = MemoryBudget::availableBytes();
    if (needed > memory) {
        constexpr double MB = 1024.0 * 1024.0;
        return fail(Texts::frameTooLargeMessage()
                        .arg(pageLocation(page))
                        .arg(static_cast<double>(needed) / MB, 0, 'f', 0)
                        .arg(static_cast<double>(memory) / MB, 0, 'f', 0));
    }
    if (!m_folder && page == m_pageBlocks.size()) {
        const std::uint64_t frameSamples = static_cast<std::uint64_t>(width) * height * sampleBytes;
        const std::uint64_t end = offsets[blocks - 1] + counts[blocks - 1];
        const bool whole = oneBlock && offsets[0] > 0 && end - offsets[0] >= frameSamples;
        m_pageBlocks.push_back(whole ? Block{offsets[0], frameSamples} : Block{});
    }
    return true;
}

QString TiffStackReader::pageLocation(std::size_t k) const
{
    if (m_folder) {
        const QString name = QFileInfo(m_info.files[static_cast<qsizetype>(k)]).fileName();
        return bold(name);
    }
    return Texts::tiffPageLocation().arg(k + 1).arg(QFileInfo(m_info.files.constFirst()).fileName());
}

QString TiffStackReader::readError(std::size_t page, const TiffHandle& tiff) const
{
    return readErrorText(pageLocation(page), tiff);
}

bool TiffStackReader::fail(const QString& message)
{
    m_error = message;
    return false;
}

} // namespace zarvi
