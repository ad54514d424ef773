#pragma once

#include "datafile/HDF5Writer_V6.h"
#include "datafile/SignalDataset.h"
#include "definitions/FileDefinitions.h"
#include "fileeditor/VideoConverter.h"

#include <QFile>

#include <opencv2/core.hpp>
#include <opencv2/videoio.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <vector>

namespace zarvi::test {

/// Writes a Coordinates dataset as the tracking does: int32 [frames, 2] with a float64
/// "Time" beside it, in the group of `path`.
inline void writeCoordinates(const QString& file, const QString& path,
                             const std::vector<cv::Point>& positions, const std::vector<double>& time)
{
    HDF5Writer_V6 writer;
    ASSERT_GE(writer.open(file), 0);
    const QString groupPath = path.section(QLatin1Char('/'), 0, -2);
    const hid_t group = writer.createGroupPath(writer.fileId(), groupPath);
    ASSERT_GE(group, 0);
    std::vector<std::int32_t> values;
    for (const cv::Point& p : positions)
        values.insert(values.end(), {p.x, p.y});
    const hsize_t n = positions.size();
    const hid_t dataset =
        writer.createDataset(group, ElementKind::Int32, path.section(QLatin1Char('/'), -1), 2,
                             {H5S_UNLIMITED, 2}, {std::max<hsize_t>(n, 1), 2}, {n, 2}, 0);
    ASSERT_GE(dataset, 0);
    ASSERT_TRUE(writer.write(dataset, values.data(), {0, 0}, {n, 2}));
    ASSERT_TRUE(writer.writeAttribute(dataset, FileDefinitions::Username, QStringLiteral("Mouse")));
    writer.closeDataset(dataset);
    const hid_t times = writer.create1D(group, ElementKind::Float64, FileDefinitions::Time, n);
    ASSERT_TRUE(writer.append(times, time.data(), {n}));
    writer.closeDataset(times);
    writer.closeGroup(group);
}

/// Adds a signal "<group>/{Signal, Time}" to an existing data file.
inline void writeSignal(const QString& file, const QString& group, const Signal& signal)
{
    HDF5Writer_V6 writer;
    ASSERT_GE(writer.open(file), 0);
    QString error;
    ASSERT_TRUE(SignalDataset::write(writer, group, signal, {}, error)) << error.toStdString();
}

/// Writes a colour MJPG video of `frames` frames at `rate`, each drawn by `draw`, and links
/// it into `file` (created when missing) as "DataConverted/Camera/Video/Series1/Video1".
inline void writeLinkedVideo(const QString& file, const QString& video, cv::Size size, int frames,
                             double rate, const std::function<void(int, cv::Mat&)>& draw)
{
    cv::VideoWriter writer(QFile::encodeName(video).toStdString(),
                           cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), rate, size, true);
    ASSERT_TRUE(writer.isOpened());
    cv::Mat frame(size, CV_8UC3);
    for (int k = 0; k < frames; ++k) {
        draw(k, frame);
        writer.write(frame);
    }
    writer.release();
    const ConversionResult linked = VideoConverter::convert(VideoConversionConfig{
        video, ConversionDestination{file, QStringLiteral("Camera"), QString(), 1}, false});
    ASSERT_TRUE(linked.ok()) << linked.error.toStdString();
}

} // namespace zarvi::test
