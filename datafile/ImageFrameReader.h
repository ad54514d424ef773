#pragma once

#include "datafile/ImageStackInfo.h"
#include "datafile/StoredChunks.h"

#include <QString>

#include <opencv2/core.hpp>

#include <climits>

#include <hdf5.h>

#include <vector>

namespace zarvi {

class HDF5Manager_V6;

/// Reads an "ImageStack" dataset (height x width x frames, one chunk per frame) one
/// frame at a time, so that no stack is ever held whole in memory. open() checks the
/// geometry and reads the "Time" beside the stack; readFrame() gives frame k as a
/// single-channel 32-bit float image, the copy every image operation computes on.
/// The file stays owned by the caller and must outlive the reader. Used on the
/// thread that holds the file.
class ImageFrameReader
{
public:
    /// Why the last open() failed.
    enum class Problem
    {
        None,
        /// No dataset at the path.
        NotFound,
        /// A dataset that is not a three-dimensional stack of numbers.
        NotStack,
        /// Its "Time" is missing or does not have one entry per frame.
        TimeMismatch,
        /// It declares more frames than the file stores, or frames larger than memory.
        TooLarge
    };

    ImageFrameReader() = default;
    ~ImageFrameReader();
    ImageFrameReader(const ImageFrameReader&) = delete;
    ImageFrameReader& operator=(const ImageFrameReader&) = delete;

    /// Opens the stack at `stackPath` and reads its "Time". False with `error` when the
    /// dataset is missing, is not three-dimensional, declares more than the file stores or
    /// a frame that the memory available cannot hold, or its "Time" does not have one
    /// entry per frame. A stack of zero frames opens: callers decide whether that is usable.
    bool open(HDF5Manager_V6& file, const QString& stackPath, QString& error);
    void close();

    const ImageStackInfo& info() const { return m_info; }
    const std::vector<double>& time() const { return m_time; }
    const QString& path() const { return m_path; }
    Problem problem() const { return m_problem; }

    /// Frame `index` as CV_32FC1 (height x width). The buffer of `frame` is reused when
    /// it already has that type and size.
    bool readFrame(std::size_t index, cv::Mat& frame, QString& error);
    /// Frame `index` as stored, CV_16UC1.
    bool readRawFrame(std::size_t index, cv::Mat& frame, QString& error);
    /// Frame `index` as stored, height x width 16-bit values row by row, into `out`,
    /// which holds that many (a buffer the caller writes from, say).
    bool readRawFrame(std::size_t index, void* out, QString& error);
    /// Where each frame's 16-bit values lie in the file, for reading frames on several
    /// threads without the library; empty when they are not stored as they are read
    /// (compressed, say), and then only readRawFrame() reads them.
    StoredChunks storedFrames() const;

private:
    HDF5Manager_V6* m_file = nullptr;
    hid_t m_dataset = H5I_INVALID_HID;
    QString m_path;
    Problem m_problem = Problem::None;
    ImageStackInfo m_info;
    std::vector<double> m_time;
    cv::Mat m_raw;
};

} // namespace zarvi
