#pragma once

#include "datafile/ImageStackInfo.h"

#include <QString>
#include <QVariantMap>

#include <opencv2/core.hpp>

#include <hdf5.h>

namespace zarvi {

class HDF5Writer_V6;

/// Writes an "ImageStack" dataset and its "Time" into a sensor group frame by frame:
/// create() lays out the empty stack (height x width x 0, one chunk per frame, with
/// "BitCount", "Format", "Height", "Width" and "Username") and an empty "Time"; each
/// append() converts one frame to unsigned 16-bit, rounding to the nearest integer and
/// saturating (so negative values become 0 and values above 65535 become 65535), and
/// grows both datasets by one. The stack and its "Time" always have the same length.
/// Used on the thread that holds the file.
class ImageFrameWriter
{
public:
    ImageFrameWriter() = default;
    ~ImageFrameWriter();
    ImageFrameWriter(const ImageFrameWriter&) = delete;
    ImageFrameWriter& operator=(const ImageFrameWriter&) = delete;

    /// Creates the stack and "Time" in `group`; `expectedFrames` sizes the chunks of
    /// "Time". `attributes` go onto the stack dataset.
    bool create(HDF5Writer_V6& file, hid_t group, const ImageStackInfo& geometry, std::size_t expectedFrames,
                const QVariantMap& attributes, QString& error);
    /// Appends one frame (one channel, any depth, of the created size) taken at `time`.
    bool append(const cv::Mat& frame, double time, QString& error);
    /// Appends one frame already in unsigned 16-bit, `pixels` holding height x width values.
    bool appendRaw(const std::uint16_t* pixels, double time, QString& error);
    void close();

    std::size_t frameCount() const { return m_frames; }
    hid_t stack() const { return m_stack; }

private:
    HDF5Writer_V6* m_file = nullptr;
    hid_t m_stack = H5I_INVALID_HID;
    hid_t m_time = H5I_INVALID_HID;
    ImageStackInfo m_geometry;
    std::size_t m_frames = 0;
    cv::Mat m_buffer;
};

} // namespace zarvi
