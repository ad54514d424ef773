#include "fileeditor/TiffStackWriter.h"

#include <QSysInfo>
#include <QtEndian>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>

#include "datafile/PositionedIo.h"
#include "datafile/TwoHalves.h"
#include "datafile/WriteBehind.h"
#include "definitions/FileDefinitions.h"
#include "definitions/FileEditorOperationDefinitions.h"

namespace zarvi {

namespace {

using Texts = FileEditorOperationDefinitions;

/// Hard limit of a classic TIFF file: 32-bit offsets.
constexpr std::uint64_t ClassicMaximumBytes = 0xFFFFFFFFULL;

/// The tags of every page, in the ascending order a directory needs.
enum Tag : std::uint16_t
{
    NewSubfileType = 254,
    ImageWidth = 256,
    ImageLength = 257,
    BitsPerSample = 258,
    Compression = 259,
    Photometric = 262,
    StripOffsets = 273,
    SamplesPerPixel = 277,
    RowsPerStrip = 278,
    StripByteCounts = 279,
    PlanarConfig = 284,
    Software = 305,
    SampleFormat = 339
};
constexpr std::size_t EntryCount = 13;

enum FieldType : std::uint16_t
{
    Ascii = 2,
    Short = 3,
    Long = 4,
    Long8 = 16
};

/// Sizes of the parts of a directory in classic TIFF and BigTIFF.
struct Layout
{
    std::size_t header;
    std::size_t countField;
    std::size_t entry;
    std::size_t value;
};
constexpr Layout ClassicLayout{8, 2, 12, 4};
constexpr Layout BigLayout{16, 8, 20, 8};

/// Stores value little-endian in `size` bytes at `at`.
void put(std::vector<std::uint8_t>& bytes, std::size_t at, std::uint64_t value, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        bytes[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

constexpr std::uint64_t roundUp(std::uint64_t value, std::uint64_t step)
{
    return (value + step - 1) / step * step;
}

QByteArray softwareName()
{
    return (FileDefinitions::SoftwareNameValue + QLatin1Char(' ') + FileDefinitions::SoftwareVersionValue)
               .toUtf8() +
           '\0';
}

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
    m_writeBehind.reset();
    m_file.close();
    m_config = config;
    m_framesWritten = 0;
    m_error.clear();
    if (config.width <= 0 || config.height <= 0)
        return fail(Texts::invalidFrameSizeMessage().arg(config.width).arg(config.height));
    if (config.bitsPerSample != 8 && config.bitsPerSample != 16)
        return fail(Texts::writeBitDepthMessage().arg(config.bitsPerSample));
    if (config.frameCount == 0)
        return fail(Texts::noFramesMessage());

    // The size as classic TIFF decides the container.
    m_bigTiff = false;
    buildPage();
    const std::uint64_t totalBytes =
        m_headerBytes + m_pages[0].size() * static_cast<std::uint64_t>(config.frameCount);
    switch (config.container) {
    case TiffContainer::Automatic:
        m_bigTiff = totalBytes > ClassicLimitBytes;
        break;
    case TiffContainer::Classic:
        if (totalBytes > ClassicMaximumBytes)
            return fail(Texts::classicTiffTooLargeMessage().arg(totalBytes / 1e9, 0, 'f', 1));
        break;
    case TiffContainer::Big:
        m_bigTiff = true;
        break;
    }
    if (m_bigTiff)
        buildPage();

    // Opened without truncation: an empty file is written into as it is, and only a file
    // with contents is cut, so replacing it still works.
    m_file.setFileName(config.path);
    if (!m_file.open(QIODevice::ReadWrite | QIODevice::Unbuffered) ||
        (m_file.size() > 0 && !m_file.resize(0))) {
        const QString reason = m_file.errorString();
        m_file.close();
        return fail(Texts::unableToCreateMessage().arg(config.path, reason));
    }
    // The whole file's blocks at once: the pages then need none of their own.
    reserveBlocksAt(m_file.handle(), 0,
                    m_headerBytes + m_pages[0].size() * static_cast<std::uint64_t>(config.frameCount));
    const Layout& layout = m_bigTiff ? BigLayout : ClassicLayout;
    std::vector<std::uint8_t> header(layout.header, 0);
    header[0] = 'I';
    header[1] = 'I';
    put(header, 2, m_bigTiff ? 43 : 42, 2);
    if (m_bigTiff) {
        put(header, 4, 8, 2);
        put(header, 8, m_headerBytes, 8);
    } else {
        put(header, 4, m_headerBytes, 4);
    }
    if (!writeWholeAt(m_file.handle(), header.data(), header.size(), 0))
        return fail(Texts::unableToWriteMessage().arg(m_config.path, qt_error_string(errno)));
    m_writeBehind = std::make_unique<WriteBehind>(m_file.handle());
    return true;
}

void TiffStackWriter::buildPage()
{
    const Layout& layout = m_bigTiff ? BigLayout : ClassicLayout;
    const QByteArray software = softwareName();
    const auto width = static_cast<std::uint64_t>(m_config.width);
    const auto height = static_cast<std::uint64_t>(m_config.height);
    const std::uint64_t pixelBytes = width * height * static_cast<std::uint64_t>(m_config.bitsPerSample / 8);
    const std::size_t entriesEnd = layout.countField + EntryCount * layout.entry;
    const std::size_t softwareAt = entriesEnd + layout.value;
    const bool softwareInline = static_cast<std::size_t>(software.size()) <= layout.value;
    m_headerBytes = layout.header;
    m_directoryBytes = roundUp(softwareAt + (softwareInline ? 0 : software.size()), 16);
    std::vector<std::uint8_t>& page = m_pages[0];
    page.assign(roundUp(m_directoryBytes + pixelBytes, 16), 0);

    put(page, 0, EntryCount, layout.countField);
    std::size_t at = layout.countField;
    const auto entry = [&](Tag tag, FieldType type, std::uint64_t count, std::uint64_t value) {
        put(page, at, tag, 2);
        put(page, at + 2, type, 2);
        const std::size_t countSize = m_bigTiff ? 8 : 4;
        put(page, at + 4, count, countSize);
        const std::size_t valueAt = at + 4 + countSize;
        const std::size_t size = type == Short ? 2 : type == Long ? 4 : type == Long8 ? 8 : 0;
        if (size > 0)
            put(page, valueAt, value, size);
        at += layout.entry;
        return valueAt;
    };
    const FieldType offsetType = m_bigTiff ? Long8 : Long;
    entry(NewSubfileType, Long, 1, 2); // a page of a multi-page image
    entry(ImageWidth, Long, 1, width);
    entry(ImageLength, Long, 1, height);
    entry(BitsPerSample, Short, 1, static_cast<std::uint64_t>(m_config.bitsPerSample));
    entry(Compression, Short, 1, 1);
    entry(Photometric, Short, 1, 1); // minimum is black
    m_stripOffsetAt = entry(StripOffsets, offsetType, 1, 0);
    entry(SamplesPerPixel, Short, 1, 1);
    entry(RowsPerStrip, Long, 1, height);
    entry(StripByteCounts, offsetType, 1, pixelBytes);
    entry(PlanarConfig, Short, 1, 1);
    const std::size_t softwareValueAt =
        entry(Software, Ascii, static_cast<std::uint64_t>(software.size()), 0);
    entry(SampleFormat, Short, 1, 1); // unsigned integers
    m_nextDirectoryAt = entriesEnd;
    // Software sits after the directory unless it fits the entry; its place relative to
    // the page start is fixed up for each page in placePage().
    std::memcpy(&page[softwareInline ? softwareValueAt : softwareAt], software.constData(),
                static_cast<std::size_t>(software.size()));
    m_softwareValueAt = softwareInline ? 0 : softwareValueAt;
    m_softwareAt = softwareAt;
    m_pages[1] = page;
}

bool TiffStackWriter::canAppend()
{
    if (!m_file.isOpen())
        return fail(Texts::notOpenMessage());
    if (m_framesWritten >= m_config.frameCount)
        return fail(Texts::tooManyFramesMessage().arg(m_config.path).arg(m_config.frameCount));
    return true;
}

bool TiffStackWriter::writeFrame(std::span<const std::uint16_t> frame)
{
    if (!canAppend())
        return false;
    const auto width = static_cast<std::size_t>(m_config.width);
    const auto height = static_cast<std::size_t>(m_config.height);
    if (frame.size() != width * height)
        return fail(Texts::frameBufferSizeMessage().arg(frame.size()).arg(width * height));
    std::uint8_t* samples = fillingPage().data() + m_directoryBytes;
    if (m_config.bitsPerSample == 8)
        narrow(frame.data(), samples, frame.size());
    else if constexpr (QSysInfo::ByteOrder == QSysInfo::LittleEndian)
        std::memcpy(samples, frame.data(), frame.size_bytes());
    else
        qToLittleEndian<std::uint16_t>(frame.data(), static_cast<qsizetype>(frame.size()), samples);
    return writePage();
}

void* TiffStackWriter::frameSlot()
{
    const bool asStored = m_config.bitsPerSample == 16 && QSysInfo::ByteOrder == QSysInfo::LittleEndian;
    return asStored && m_file.isOpen() ? fillingPage().data() + m_directoryBytes : nullptr;
}

bool TiffStackWriter::writeFilledFrame()
{
    if (!frameSlot())
        return fail(Texts::notOpenMessage());
    return canAppend() && writePage();
}

std::uint64_t TiffStackWriter::placePage(std::vector<std::uint8_t>& page, std::size_t k) const
{
    const std::size_t offsetSize = m_bigTiff ? 8 : 4;
    const std::uint64_t start = m_headerBytes + page.size() * static_cast<std::uint64_t>(k);
    const bool last = k + 1 == m_config.frameCount;
    put(page, m_nextDirectoryAt, last ? 0 : start + page.size(), offsetSize);
    put(page, m_stripOffsetAt, start + m_directoryBytes, offsetSize);
    if (m_softwareValueAt != 0)
        put(page, m_softwareValueAt, start + m_softwareAt, offsetSize);
    return start;
}

bool TiffStackWriter::writePage()
{
    std::vector<std::uint8_t>& page = fillingPage();
    if (!m_writeBehind->start(page.data(), page.size(), placePage(page, m_framesWritten)))
        return finishWrites();
    ++m_framesWritten;
    return true;
}

bool TiffStackWriter::writeFramesOnBothCores(const std::function<bool(std::size_t, void*)>& fill,
                                             const std::function<bool(std::size_t)>& keepGoing)
{
    if (!frameSlot())
        return fail(Texts::notOpenMessage());
    if (!finishWrites())
        return false;
    const std::size_t from = m_framesWritten;
    std::atomic<bool> stop{false};
    std::atomic<int> writeErrno{0};
    // Pages go straight to their places, so the two threads need not wait for each other;
    // only this one reports. Without a second thread this one writes both lanes in turn.
    inTwoHalves(2, true, [&](std::size_t firstLane, std::size_t endLane) {
        for (std::size_t lane = firstLane; lane < endLane; ++lane) {
            std::vector<std::uint8_t>& page = m_pages[lane];
            for (std::size_t k = from + lane; k < m_config.frameCount && !stop; k += 2) {
                if (!fill(k, page.data() + m_directoryBytes)) {
                    stop = true;
                } else if (!writeWholeAt(m_file.handle(), page.data(), page.size(), placePage(page, k))) {
                    writeErrno = errno != 0 ? errno : EIO;
                    stop = true;
                } else if (lane == 0 && !keepGoing(k + 1)) {
                    stop = true;
                }
            }
        }
    });
    if (writeErrno != 0)
        return fail(Texts::unableToWriteMessage().arg(m_config.path, qt_error_string(writeErrno)));
    if (stop)
        return false;
    m_framesWritten = m_config.frameCount;
    return true;
}

bool TiffStackWriter::finishWrites()
{
    if (m_writeBehind && !m_writeBehind->finish())
        return fail(
            Texts::unableToWriteMessage().arg(m_config.path, qt_error_string(m_writeBehind->error())));
    return true;
}

bool TiffStackWriter::finish()
{
    if (!m_file.isOpen())
        return fail(Texts::notOpenMessage());
    const bool written = finishWrites();
    m_writeBehind.reset();
    m_file.close();
    if (!written)
        return false;
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
