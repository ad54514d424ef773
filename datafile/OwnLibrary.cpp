#include "datafile/OwnLibrary.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QList>

#include <dlfcn.h>

#include <cstddef>
#include <vector>

namespace zarvi {

namespace {

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
QByteArray libraryPath(const char* fileName)
{
    for (const QByteArray& folder : programSearchPath()) {
        const QByteArray candidate = folder + '/' + fileName;
        if (QFileInfo::exists(QFile::decodeName(candidate)))
            return candidate;
    }
    return fileName;
}

} // namespace

void* OwnLibrary::entry(const char* fileName, const char* entry, QString& error)
{
    // The library and what it brings look their symbols up among themselves first. Each
    // lookup then passes a dozen libraries instead of the program's fifty, which halves
    // the load of the commands library (the numeric library alone resolves some 16,000
    // references to itself). Nothing they share with the program is defined twice, so
    // every symbol resolves to the same definition either way. The address sanitizer's
    // runtime refuses such a load, so its builds keep the plain order.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr int Scope = RTLD_LOCAL;
#else
    constexpr int Scope = RTLD_LOCAL | RTLD_DEEPBIND;
#endif
    void* library = dlopen(libraryPath(fileName).constData(), RTLD_LAZY | Scope);
    void* address = library ? dlsym(library, entry) : nullptr;
    if (!address)
        error = QString::fromLocal8Bit(dlerror());
    return address;
}

} // namespace zarvi
