#pragma once

#include <QString>

#include <memory>

#include "datafile/VideoDecoder.h"
#include "datafile/VideoEncoder.h"

namespace zarvi {

/// The video decoders and encoders, which live in a library of their own
/// (libzarvi_video.so) that is loaded on first use: OpenCV's video input and FFmpeg bring
/// in close to two hundred shared libraries, which every program would otherwise load at
/// start-up whether or not it touches a video. Thread-safe; the library stays loaded.
class VideoCodecs
{
public:
    virtual ~VideoCodecs() = default;

    virtual std::unique_ptr<VideoDecoder> makeDecoder() const = 0;
    virtual std::unique_ptr<VideoEncoder> makeEncoder() const = 0;

    /// Loads the library once; null with `error` set when it cannot be loaded.
    static const VideoCodecs* load(QString& error);
};

} // namespace zarvi
