#include "datafile/ImageFrameWriter.h"

#include "datafile/HDF5Writer_V6.h"
#include "definitions/FileDefinitions.h"

namespace zarvi {

using FD = FileDefinitions;

namespace {

const QString SecondsUnit = QStringLiteral("s");

} // namespace

ImageFrameWriter::~ImageFrameWriter()
{
    close();
}

void ImageFrameWriter::close()
{
    if (m_file) {
        if (m_stack >= 0)
            m_file->closeDataset(m_stack);
        if (m_time >= 0)
            m_file->closeDataset(m_time);
    }
    m_stack = m_time = H5I_INVALID_HID;
    m_file = nullptr;
}

bool ImageFrameWriter::create(HDF5Writer_V6& file, hid_t group, const ImageStackInfo& geometry,
                              std::size_t expectedFrames, const QVariantMap& attributes, QString& error)
{
    close();
    m_file = &file;
    m_geometry = geometry;
    m_frames = 0;
    m_stack = file.createImageStack(group, FD::ImageStack, geometry.height, geometry.width, geometry.format,
                                    geometry.bitCount, 0);
    bool ok = m_stack >= 0;
    if (ok && !geometry.username.isEmpty())
        ok = file.writeAttribute(m_stack, FD::Username, geometry.username);
    for (auto it = attributes.cbegin(); ok && it != attributes.cend(); ++it)
        ok = file.writeAttribute(m_stack, it.key(), it.value());
    if (ok) {
        m_time = file.create1D(group, ElementKind::Float64, FD::Time, expectedFrames);
        ok = m_time >= 0 && file.writeAttribute(m_time, FD::Unit, SecondsUnit);
    }
    if (!ok) {
        error =
            FD::unableToCreateDatasetMessage().arg(FD::ImageStack) + QStringLiteral(" ") + file.lastError();
        close();
    }
    return ok;
}

bool ImageFrameWriter::append(const cv::Mat& frame, double time, QString& error)
{
    if (frame.channels() != 1 || frame.rows != m_geometry.height || frame.cols != m_geometry.width) {
        error = FD::unableToWriteFrameMessage().arg(m_frames).arg(FD::ImageStack);
        return false;
    }
    // convertTo rounds to the nearest integer and saturates into 0..65535.
    const cv::Mat* pixels = &frame;
    if (frame.depth() != CV_16U || !frame.isContinuous()) {
        frame.convertTo(m_buffer, CV_16U);
        pixels = &m_buffer;
    }
    return appendRaw(pixels->ptr<std::uint16_t>(), time, error);
}

bool ImageFrameWriter::appendRaw(const std::uint16_t* pixels, double time, QString& error)
{
    const std::vector<hsize_t> count{static_cast<hsize_t>(m_geometry.height),
                                     static_cast<hsize_t>(m_geometry.width), 1};
    if (!m_file || m_stack < 0 || !m_file->append(m_stack, pixels, count) ||
        !m_file->append(m_time, &time, {1})) {
        error = FD::unableToWriteFrameMessage().arg(m_frames).arg(FD::ImageStack) +
                (m_file ? QStringLiteral(" ") + m_file->lastError() : QString());
        return false;
    }
    ++m_frames;
    return true;
}

} // namespace zarvi
