#include "fileeditor/TiffHandle.h"

#include <QFile>

#include <cstdio>
#include <memory>

namespace zarvi {

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
#ifdef _WIN32
    m_tiff = TIFFOpenWExt(reinterpret_cast<const wchar_t*>(path.utf16()), mode, options.get());
#else
    m_tiff = TIFFOpenExt(QFile::encodeName(path).constData(), mode, options.get());
#endif
    return m_tiff != nullptr;
}

bool TiffHandle::close()
{
    if (!m_tiff)
        return true;
    m_error.clear();
    TIFFClose(m_tiff);
    m_tiff = nullptr;
    return m_error.isEmpty();
}

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
