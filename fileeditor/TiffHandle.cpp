#include "fileeditor/TiffHandle.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zarvi {

namespace {

/// Reads smaller than this go through the block; a directory and its values usually
/// lie within it.
constexpr std::size_t BlockBytes = 64 * 1024;

} // namespace

TiffHandle::~TiffHandle()
{
    close();
}

bool TiffHandle::open(const QString& path, const char* mode)
{
    close();
    m_error.clear();
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                                   &TIFFOpenOptionsFree);
    if (!options)
        return false;
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), &TiffHandle::onError, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), &TiffHandle::onWarning, this);
    m_descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    struct stat status = {};
    if (m_descriptor < 0 || ::fstat(m_descriptor, &status) != 0) {
        m_error = QString::fromLocal8Bit(std::strerror(errno));
        close();
        return false;
    }
    m_size = static_cast<std::uint64_t>(status.st_size);
    m_position = 0;
    m_blockLength = 0;
    m_block.resize(BlockBytes);
    const QByteArray name = QFile::encodeName(path);
    m_tiff = TIFFClientOpenExt(name.constData(), mode, this, &TiffHandle::onRead, &TiffHandle::onWrite,
                               &TiffHandle::onSeek, &TiffHandle::onClose, &TiffHandle::onSize,
                               &TiffHandle::onMap, &TiffHandle::onUnmap, options.get());
    if (!m_tiff) {
        ::close(m_descriptor);
        m_descriptor = -1;
    }
    return m_tiff != nullptr;
}

bool TiffHandle::close()
{
    if (!m_tiff) {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
        m_descriptor = -1;
        return true;
    }
    m_error.clear();
    TIFFClose(m_tiff); // closes the descriptor through onClose
    m_tiff = nullptr;
    return m_error.isEmpty();
}

tmsize_t TiffHandle::readAt(std::uint64_t offset, void* buffer, tmsize_t size) const
{
    tmsize_t done = 0;
    while (done < size) {
        const ssize_t got = ::pread(m_descriptor, static_cast<char*>(buffer) + done,
                                    static_cast<std::size_t>(size - done), static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return -1;
        if (got == 0)
            break;
        done += got;
    }
    return done;
}

tmsize_t TiffHandle::onRead(thandle_t self, void* buffer, tmsize_t size)
{
    auto* handle = static_cast<TiffHandle*>(self);
    const std::uint64_t at = handle->m_position;
    if (size <= 0)
        return 0;
    if (static_cast<std::size_t>(size) >= BlockBytes) {
        const tmsize_t got = handle->readAt(at, buffer, size);
        if (got > 0)
            handle->m_position += static_cast<std::uint64_t>(got);
        return got;
    }
    const bool inside = at >= handle->m_blockStart &&
                        at + static_cast<std::uint64_t>(size) <= handle->m_blockStart + handle->m_blockLength;
    if (!inside) {
        const tmsize_t got = handle->readAt(at, handle->m_block.data(), static_cast<tmsize_t>(BlockBytes));
        if (got < 0)
            return -1;
        handle->m_blockStart = at;
        handle->m_blockLength = static_cast<std::size_t>(got);
    }
    const std::uint64_t available = handle->m_blockStart + handle->m_blockLength -
                                    std::min(at, handle->m_blockStart + handle->m_blockLength);
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(available, static_cast<std::uint64_t>(size)));
    std::memcpy(buffer, handle->m_block.data() + (at - handle->m_blockStart), count);
    handle->m_position += count;
    return static_cast<tmsize_t>(count);
}

tmsize_t TiffHandle::onWrite(thandle_t, void*, tmsize_t)
{
    return -1; // opened for reading only
}

toff_t TiffHandle::onSeek(thandle_t self, toff_t offset, int whence)
{
    auto* handle = static_cast<TiffHandle*>(self);
    if (whence == SEEK_SET)
        handle->m_position = offset;
    else if (whence == SEEK_CUR)
        handle->m_position += offset;
    else if (whence == SEEK_END)
        handle->m_position = handle->m_size + offset;
    return handle->m_position;
}

int TiffHandle::onClose(thandle_t self)
{
    auto* handle = static_cast<TiffHandle*>(self);
    const int result = handle->m_descriptor >= 0 ? ::close(handle->m_descriptor) : 0;
    handle->m_descriptor = -1;
    return result;
}

toff_t TiffHandle::onSize(thandle_t self)
{
    return static_cast<TiffHandle*>(self)->m_size;
}

int TiffHandle::onMap(thandle_t, void**, toff_t*)
{
    return 0; // no memory mapping: reads go through onRead
}

void TiffHandle::onUnmap(thandle_t, void*, toff_t) {}

int TiffHandle::onError(TIFF*, void* self, const char*, const char* format, va_list args)
{
    char text[512];
    std::vsnprintf(text, sizeof text, format, args);
    static_cast<TiffHandle*>(self)->m_error = QString::fromLocal8Bit(text);
    return 1;
}

int TiffHandle::onWarning(TIFF*, void*, const char*, const char*, va_list)
{
    return 1;
}

} // namespace zarvi
