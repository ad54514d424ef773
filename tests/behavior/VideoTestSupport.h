#pragma once

#include "common/TempDir.h"
#include "datafile/HDF5Reader_V6.h"
#include "fileeditor/ConvertTestSupport.h"
#include "fileeditor/VideoConverter.h"

#include <QFile>

#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>

#include <vector>

namespace zarvi::test {

constexpr int VideoWidth = 160;
constexpr int VideoHeight = 120;
constexpr double VideoRate = 25.0;
/// A frame with no disc on it.
inline const cv::Point NoDisc{-1, -1};

/// A light frame with a dark disc of `radius` centred on `centre` (none for NoDisc).
inline cv::Mat discFrame(cv::Point centre, int radius, cv::Scalar disc = cv::Scalar::all(20),
                         cv::Scalar background = cv::Scalar::all(230))
{
    cv::Mat frame(VideoHeight, VideoWidth, CV_8UC3, background);
    if (centre != NoDisc)
        cv::circle(frame, centre, radius, disc, cv::FILLED);
    return frame;
}

/// Writes the frames losslessly (FFV1 in AVI) at VideoRate; false when the writer fails.
inline bool writeVideo(const QString& path, const std::vector<cv::Mat>& frames)
{
    cv::VideoWriter writer(QFile::encodeName(path).toStdString(), cv::CAP_FFMPEG,
                           cv::VideoWriter::fourcc('F', 'F', 'V', '1'), VideoRate,
                           cv::Size(VideoWidth, VideoHeight), true);
    if (!writer.isOpened())
        return false;
    for (const cv::Mat& frame : frames)
        writer.write(frame);
    return true;
}

/// A video of a disc at each of `centres` in turn.
inline bool writeDiscVideo(const QString& path, const std::vector<cv::Point>& centres, int radius = 6,
                           cv::Scalar disc = cv::Scalar::all(20),
                           cv::Scalar background = cv::Scalar::all(230))
{
    std::vector<cv::Mat> frames;
    for (const cv::Point& centre : centres)
        frames.push_back(discFrame(centre, radius, disc, background));
    return writeVideo(path, frames);
}

/// Links `video` into `dataFile` (created when missing) as the conversion does; the link's path.
inline QString linkVideo(const QString& dataFile, const QString& video, const QString& device = "Camera")
{
    const ConversionResult result = VideoConverter::convert(
        VideoConversionConfig{video, ConversionDestination{dataFile, device, QString(), 0}});
    EXPECT_TRUE(result.ok()) << result.error.toStdString();
    return result.datapaths.value(0);
}

/// The rows (x, y) of a coordinates dataset.
inline std::vector<cv::Point> storedCoordinates(const QString& file, const QString& path)
{
    const std::vector<double> values = storedValues(file, path);
    std::vector<cv::Point> points;
    for (std::size_t i = 0; i + 1 < values.size(); i += 2)
        points.emplace_back(static_cast<int>(values[i]), static_cast<int>(values[i + 1]));
    return points;
}

} // namespace zarvi::test
