#pragma once

#include <QString>

#include <cstdint>
#include <vector>

#include <tiffio.h>

namespace zarvi {

/// Owns one libtiff file open for reading and keeps the library's error texts for it, so
/// that a failure can be reported to the user instead of being printed to the console;
/// warnings (unknown private tags and the like) are dropped. The library reads through
/// this object: small reads (a page directory, its tag values) are served from a block
/// read once with one positioned read, and seeks cost no call at all, so walking the
/// pages of a stack takes about one read per page. Neither copied nor moved, because
/// libtiff holds its address. Used by one thread at a time.
class TiffHandle
{
public:
    TiffHandle() = default;
    ~TiffHandle();
    TiffHandle(const TiffHandle&) = delete;
    TiffHandle& operator=(const TiffHandle&) = delete;

    /// Opens path for reading with a libtiff mode ("r", "rm"); closes any file opened before.
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

    static tmsize_t onRead(thandle_t self, void* buffer, tmsize_t size);
    static tmsize_t onWrite(thandle_t self, void* buffer, tmsize_t size);
    static toff_t onSeek(thandle_t self, toff_t offset, int whence);
    static int onClose(thandle_t self);
    static toff_t onSize(thandle_t self);
    static int onMap(thandle_t self, void** base, toff_t* size);
    static void onUnmap(thandle_t self, void* base, toff_t size);
    /// Reads up to size bytes at offset straight from the file; -1 on an error.
    tmsize_t readAt(std::uint64_t offset, void* buffer, tmsize_t size) const;

    TIFF* m_tiff = nullptr;
    QString m_error;
    int m_descriptor = -1;
    std::uint64_t m_size = 0;
    std::uint64_t m_position = 0;
    std::vector<char> m_block;
    std::uint64_t m_blockStart = 0;
    std::size_t m_blockLength = 0;
};

} // namespace zarvi
