#include "datafile/ImageFrameReader.h"

#include "datafile/HDF5Manager_V6.h"
#include "datafile/MemoryBudget.h"
#include "definitions/FileDefinitions.h"

namespace zarvi {

using FD = FileDefinitions;

ImageFrameReader::~ImageFrameReader()
{
    close();
}

void ImageFrameReader::close()
{
    if (m_file && m_dataset >= 0)
        m_file->closeDataset(m_dataset);
    m_dataset = H5I_INVALID_HID;
    m_file = nullptr;
}

bool ImageFrameReader::open(HDF5Manager_V6& file, const QString& stackPath, QString& error)
{
    close();
    m_path = stackPath;
    m_problem = Problem::None;
    m_info = ImageStackInfo{};
    m_time.clear();
    if (file.objectKind(file.fileId(), stackPath) != ObjectKind::Dataset) {
        error = FD::datasetNotFoundMessage().arg(stackPath);
        m_problem = Problem::NotFound;
        return false;
    }
    const hid_t dataset = file.openDataset(file.fileId(), stackPath);
    const std::vector<hsize_t> dims = dataset >= 0 ? file.dimensions(dataset) : std::vector<hsize_t>{};
    const ElementType type = dataset >= 0 ? file.elementType(dataset) : ElementType{};
    if (dims.size() != 3 || dims[0] == 0 || dims[1] == 0 || dims[0] > INT_MAX || dims[1] > INT_MAX ||
        (type.elementClass != ElementClass::Integer && type.elementClass != ElementClass::Float)) {
        if (dataset >= 0)
            file.closeDataset(dataset);
        error = FD::notImageStackMessage().arg(stackPath);
        m_problem = Problem::NotStack;
        return false;
    }
    // The frames are read one at a time, but a damaged file may declare frames that are
    // not there or that no memory holds: both are refused before the first frame.
    constexpr std::uint64_t BytesPerPixel = 2 + 4 + 4 + 2; // raw, its float copy, result, raw result
    const QString memory = MemoryBudget::problem(
        QStringLiteral("A frame of %1 (%2 x %3)").arg(stackPath).arg(dims[0]).arg(dims[1]),
        MemoryBudget::product({dims[0], dims[1], BytesPerPixel}));
    if (!file.checkStoredExtent(dataset) || !memory.isEmpty()) {
        error = memory.isEmpty() ? file.lastError() : memory;
        file.closeDataset(dataset);
        m_problem = Problem::TooLarge;
        return false;
    }
    m_file = &file;
    m_dataset = dataset;
    m_info.height = static_cast<int>(dims[0]);
    m_info.width = static_cast<int>(dims[1]);
    m_info.frames = static_cast<std::size_t>(dims[2]);
    const QVariantMap attributes = file.readAllAttributes(dataset);
    m_info.bitCount = attributes.value(FD::BitCount, 16).toInt();
    m_info.format = attributes.value(FD::Format, FD::Format16BitGrayscale).toInt();
    m_info.username = attributes.value(FD::Username).toString();

    const QString timePath = stackPath.section(QLatin1Char('/'), 0, -2) + QLatin1Char('/') + FD::Time;
    const hid_t time =
        file.exists(file.fileId(), timePath) ? file.openDataset(file.fileId(), timePath) : H5I_INVALID_HID;
    const bool timeRead = time >= 0 && file.dimensions(time).size() == 1 && file.read(time, m_time);
    if (time >= 0)
        file.closeDataset(time);
    if (!timeRead || m_time.size() != m_info.frames) {
        error = FD::stackTimeMismatchMessage()
                    .arg(stackPath)
                    .arg(m_info.frames)
                    .arg(timeRead ? m_time.size() : 0);
        close();
        m_problem = Problem::TimeMismatch;
        return false;
    }
    return true;
}

bool ImageFrameReader::readRawFrame(std::size_t index, cv::Mat& frame, QString& error)
{
    if (m_file && index < m_info.frames)
        frame.create(m_info.height, m_info.width, CV_16UC1);
    return readRawFrame(index, frame.data, error);
}

bool ImageFrameReader::readRawFrame(std::size_t index, void* out, QString& error)
{
    if (!m_file || index >= m_info.frames) {
        error = FD::unableToReadFrameMessage().arg(index).arg(m_path);
        return false;
    }
    const std::vector<hsize_t> start{0, 0, static_cast<hsize_t>(index)};
    const std::vector<hsize_t> count{static_cast<hsize_t>(m_info.height), static_cast<hsize_t>(m_info.width),
                                     1};
    if (!m_file->read(m_dataset, start, count, static_cast<std::uint16_t*>(out))) {
        error =
            FD::unableToReadFrameMessage().arg(index).arg(m_path) + QStringLiteral(" ") + m_file->lastError();
        return false;
    }
    return true;
}

bool ImageFrameReader::readFrame(std::size_t index, cv::Mat& frame, QString& error)
{
    if (!readRawFrame(index, m_raw, error))
        return false;
    m_raw.convertTo(frame, CV_32F);
    return true;
}

StoredChunks ImageFrameReader::storedFrames() const
{
    return m_file ? StoredChunks::ofFrames(m_dataset, H5T_NATIVE_UINT16) : StoredChunks{};
}

} // namespace zarvi
