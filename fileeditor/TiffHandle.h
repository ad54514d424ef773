#pragma once

#include <QString>

#include <tiffio.h>

namespace zarvi {

/// Owns one open libtiff file and keeps the library's error texts for it, so that a
/// failure can be reported to the user instead of being printed to the console;
/// warnings (unknown private tags and the like) are dropped. Neither copied nor
/// moved, because libtiff holds its address. Used by one thread at a time.
class TiffHandle
{
public:
    TiffHandle() = default;
    ~TiffHandle();
    TiffHandle(const TiffHandle&) = delete;
    TiffHandle& operator=(const TiffHandle&) = delete;

    /// Opens path with a libtiff mode ("r", "w", "w8"); closes any file opened before.
    bool open(const QString& path, const char* mode);
    /// Closes the file; false when libtiff reported an error while flushing it
    /// (lastError() then says which).
    bool close();
    TIFF* get() const { return m_tiff; }
    bool isOpen() const { return m_tiff != nullptr; }

    /// The last error libtiff reported for this file, empty when none.
    QString lastError() const { return m_error; }
    void clearError() { m_error.clear(); }

private:
    static int onError(TIFF* tiff, void* self, const char* module, const char* format, va_list args);
    static int onWarning(TIFF* tiff, void* self, const char* module, const char* format, va_list args);

    TIFF* m_tiff = nullptr;
    QString m_error;
};

} // namespace zarvi
