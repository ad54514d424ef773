// The frames of the tracking benchmark and its decode-only baseline.
//
//   video_decode_tool frames COUNT    writes COUNT raw 640 x 480 BGR frames to stdout: a dark
//                                     ellipse moving over a lit arena, with sensor noise
//   video_decode_tool decode VIDEO    decodes every frame of VIDEO as Animal Tracking does
//                                     (VideoFrameReader, 8-bit BGR) and does nothing else

#include "fileeditor/VideoFrameReader.h"

#include <opencv2/imgproc.hpp>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numbers>
#include <vector>

namespace {

constexpr int Width = 640;
constexpr int Height = 480;

int writeFrames(long count)
{
    // The animal (30) is the only thing darker than 30 % (76): the room (150), the arena
    // floor (210) and its lines (185) are all lighter.
    cv::Mat floor(Height, Width, CV_8UC3, cv::Scalar::all(150));
    cv::circle(floor, {Width / 2, Height / 2}, 230, cv::Scalar::all(210), cv::FILLED, cv::LINE_AA);
    for (int x = 100; x < Width; x += 80)
        cv::line(floor, {x, 20}, {x, Height - 20}, cv::Scalar::all(185), 1, cv::LINE_AA);
    cv::RNG random(7);
    cv::Mat frame;
    cv::Mat grain(Height, Width, CV_16SC1);
    cv::Mat grain3;
    for (long k = 0; k < count; ++k) {
        const double t = static_cast<double>(k);
        const cv::Point centre(
            static_cast<int>(std::lround(320 + 170 * std::sin(2 * std::numbers::pi * t / 400))),
            static_cast<int>(std::lround(240 + 150 * std::sin(2 * std::numbers::pi * t / 300 + 0.5))));
        floor.copyTo(frame);
        cv::ellipse(frame, centre, {22, 13}, std::fmod(t, 360.0), 0, 360, cv::Scalar::all(30), cv::FILLED,
                    cv::LINE_AA);
        // Grey sensor noise, fresh on every frame, as a camera gives it.
        random.fill(grain, cv::RNG::NORMAL, 0, 2);
        cv::merge(std::vector<cv::Mat>{grain, grain, grain}, grain3);
        cv::add(frame, grain3, frame, cv::noArray(), CV_8U);
        const std::size_t bytes = frame.total() * frame.elemSize();
        if (std::fwrite(frame.data, 1, bytes, stdout) != bytes)
            return 1;
    }
    return 0;
}

int decode(const char* path)
{
    zarvi::VideoFrameReader reader;
    const zarvi::VideoInfo info = reader.open(zarvi::VideoFrameReaderConfig{QString::fromLocal8Bit(path)});
    if (!info.ok()) {
        std::fprintf(stderr, "%s\n", qPrintable(info.error));
        return 1;
    }
    cv::Mat frame;
    double seconds = 0.0;
    long frames = 0;
    while (reader.readNext(frame, seconds))
        ++frames;
    if (!reader.lastError().isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(reader.lastError()));
        return 1;
    }
    std::printf("%ld frames\n", frames);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], "frames") == 0)
        return writeFrames(std::atol(argv[2]));
    if (argc == 3 && std::strcmp(argv[1], "decode") == 0)
        return decode(argv[2]);
    std::fprintf(stderr, "usage: video_decode_tool frames COUNT | decode VIDEO\n");
    return 2;
}
