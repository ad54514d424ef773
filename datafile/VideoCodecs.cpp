#include "datafile/VideoCodecs.h"

#include "datafile/OwnLibrary.h"

namespace zarvi {

namespace {

constexpr char kLibraryName[] = "libzarvi_video.so";

/// The outcome of the one attempt to load the library.
struct LoadedCodecs
{
    const VideoCodecs* codecs = nullptr;
    QString error;
};

LoadedCodecs loadLibrary()
{
    QString reason;
    using Entry = const VideoCodecs* (*)();
    const auto entry = reinterpret_cast<Entry>(OwnLibrary::entry(kLibraryName, "zarviVideoCodecs", reason));
    if (!entry)
        return {nullptr, QStringLiteral("Video support could not be loaded: <b>%1</b>.").arg(reason)};
    return {entry(), QString()};
}

} // namespace

const VideoCodecs* VideoCodecs::load(QString& error)
{
    static const LoadedCodecs loaded = loadLibrary();
    if (!loaded.codecs)
        error = loaded.error;
    return loaded.codecs;
}

} // namespace zarvi
