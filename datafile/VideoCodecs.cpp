#include "datafile/VideoCodecs.h"

#include <QFile>
#include <QFileInfo>
#include <QList>

#include <dlfcn.h>

#include <vector>

namespace zarvi {

namespace {

constexpr char kLibraryName[] = "libzarvi_video.so";

/// The outcome of the one attempt to load the library.
struct LoadedCodecs
{
    const VideoCodecs* codecs = nullptr;
    QString error;
};

/// The folders the loader searches for the program's own dependencies, in its order:
/// the run path, which the build points at the library's folder, among them.
QList<QByteArray> programSearchPath()
{
    void* program = dlopen(nullptr, RTLD_NOW);
    if (!program)
        return {};
    QList<QByteArray> folders;
    Dl_serinfo size;
    if (dlinfo(program, RTLD_DI_SERINFOSIZE, &size) == 0) {
        std::vector<std::max_align_t> storage(size.dls_size / sizeof(std::max_align_t) + 1);
        auto* info = reinterpret_cast<Dl_serinfo*>(storage.data());
        if (dlinfo(program, RTLD_DI_SERINFOSIZE, info) == 0 && dlinfo(program, RTLD_DI_SERINFO, info) == 0) {
            for (unsigned int i = 0; i < info->dls_cnt; ++i)
                folders.append(info->dls_serpath[i].dls_name);
        }
    }
    dlclose(program);
    return folders;
}

/// The library's full path in the first folder of the program's search path that holds
/// it, or the bare name when none does. A bare name would be looked up in the run path of
/// whatever called dlopen(), judged by the return address: a tool that wraps dlopen(), as
/// the address sanitizer does, becomes that caller, and the program's run path is lost.
QByteArray libraryPath()
{
    for (const QByteArray& folder : programSearchPath()) {
        const QByteArray candidate = folder + '/' + kLibraryName;
        if (QFileInfo::exists(QFile::decodeName(candidate)))
            return candidate;
    }
    return kLibraryName;
}

LoadedCodecs loadLibrary()
{
    void* library = dlopen(libraryPath().constData(), RTLD_NOW | RTLD_LOCAL);
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
