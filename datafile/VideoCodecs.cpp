#include "datafile/VideoCodecs.h"

#include <dlfcn.h>

namespace zarvi {

namespace {

/// The outcome of the one attempt to load the library.
struct LoadedCodecs
{
    const VideoCodecs* codecs = nullptr;
    QString error;
};

LoadedCodecs loadLibrary()
{
    // Found through the program's run path, which the build points at the library's folder.
    void* library = dlopen("libzarvi_video.so", RTLD_NOW | RTLD_LOCAL);
    if (!library)
        return {nullptr, QStringLiteral("Video support could not be loaded: <b>%1</b>.")
                             .arg(QString::fromLocal8Bit(dlerror()))};
    using Entry = const VideoCodecs* (*)();
    const auto entry = reinterpret_cast<Entry>(dlsym(library, "zarviVideoCodecs"));
    if (!entry)
        return {nullptr, QStringLiteral("Video support could not be loaded: <b>%1</b>.")
                             .arg(QString::fromLocal8Bit(dlerror()))};
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
