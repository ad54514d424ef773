#include "datafile/OpenCvVideoDecoder.h"
#include "datafile/OpenCvVideoEncoder.h"
#include "datafile/VideoCodecs.h"

namespace zarvi {

namespace {

/// The codecs of the video library, handed to VideoCodecs::load() by the entry point below.
class OpenCvVideoCodecs : public VideoCodecs
{
public:
    std::unique_ptr<VideoDecoder> makeDecoder() const override
    {
        return std::make_unique<OpenCvVideoDecoder>();
    }
    std::unique_ptr<VideoEncoder> makeEncoder() const override
    {
        return std::make_unique<OpenCvVideoEncoder>();
    }
};

} // namespace

} // namespace zarvi

/// The library's one entry point, looked up by name after dlopen(); the object is
/// owned by the library.
extern "C" __attribute__((visibility("default"))) const zarvi::VideoCodecs* zarviVideoCodecs()
{
    static const zarvi::OpenCvVideoCodecs codecs;
    return &codecs;
}
