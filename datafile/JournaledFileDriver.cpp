#include "datafile/JournaledFileDriver.h"

#include "datafile/PositionedIo.h"
#include "datafile/RollbackJournal.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zarvi {

namespace {

/// One open file. The library's part comes first: it hands back the pointer it got.
struct DriverFile
{
    H5FD_t pub{};
    int fd = -1;
    haddr_t eoa = 0;
    haddr_t eof = 0;
    dev_t device = 0;
    ino_t inode = 0;
    bool writing = false;
    /// The end of the disk blocks reserved past the end of file for writes still to come
    /// (reserve()); the file's size stays where the writes leave it.
    haddr_t reserved = 0;
    bool reserving = true;
    /// A write or a cut failed (a full disk, say): the file may be half changed, so the
    /// journal outlives the session and the next open rolls the file back.
    bool failed = false;
    RollbackJournal journal;
};

DriverFile* fileOf(H5FD_t* file)
{
    return reinterpret_cast<DriverFile*>(file);
}

const DriverFile* fileOf(const H5FD_t* file)
{
    return reinterpret_cast<const DriverFile*>(file);
}

/// Puts the reason on the library's error stack, where the caller's message finds it.
void pushError(const char* function, hid_t major, hid_t minor, const char* what)
{
    H5Epush2(H5E_DEFAULT, __FILE__, function, __LINE__, H5E_ERR_CLS, major, minor, "%s: %s", what,
             std::strerror(errno));
}

// Offsets are signed: the largest address is the largest off_t.
constexpr haddr_t MaxAddress = (haddr_t{1} << (8 * sizeof(off_t) - 1)) - 1;

bool outOfRange(haddr_t address, size_t size)
{
    return address == HADDR_UNDEF || address > MaxAddress || size > MaxAddress - address;
}

/// How far ahead of a write that grows the file its disk blocks are reserved.
constexpr haddr_t ReserveAhead = haddr_t{64} << 20;

/// Reserves the file's disk blocks up to a little past `end` before a write that grows
/// the file reaches there (reserveBlocksAt()). Readers and the journal see only what was
/// written, as the file's size stays where the writes leave it; what is left unused is
/// given back when the file is cut to its size on closing. A file system without it, or a
/// full disk, leaves the write to proceed (or fail) as it would.
void reserve(DriverFile* file, haddr_t end)
{
    if (!file->reserving || end <= file->reserved || end <= file->eof || end > MaxAddress - ReserveAhead)
        return;
    const haddr_t from = std::max(file->eof, file->reserved);
    const haddr_t to = end + ReserveAhead;
    if (reserveBlocksAt(file->fd, from, to - from))
        file->reserved = to;
    else if (errno == EOPNOTSUPP || errno == ENOSYS)
        file->reserving = false;
}

H5FD_t* openFile(const char* name, unsigned flags, hid_t, haddr_t maxaddr)
{
    if (!name || !*name || maxaddr == 0 || maxaddr == HADDR_UNDEF) {
        H5Epush2(H5E_DEFAULT, __FILE__, __func__, __LINE__, H5E_ERR_CLS, H5E_ARGS, H5E_BADVALUE,
                 "invalid file name or address space");
        return nullptr;
    }
    auto file = std::make_unique<DriverFile>();
    file->writing = (flags & H5F_ACC_RDWR) != 0;
    int mode = file->writing ? O_RDWR : O_RDONLY;
    if (flags & H5F_ACC_TRUNC)
        mode |= O_TRUNC;
    if (flags & H5F_ACC_CREAT)
        mode |= O_CREAT;
    if (flags & H5F_ACC_EXCL)
        mode |= O_EXCL;

    if (file->writing) {
        struct stat before
        {
        };
        const bool existed = ::stat(name, &before) == 0;
        // The library first tries an existing file without creating it; a missing one
        // is its cue to create, and needs no journal yet.
        if (!existed && !(flags & H5F_ACC_CREAT)) {
            errno = ENOENT;
            pushError(__func__, H5E_FILE, H5E_CANTOPENFILE, "unable to open file");
            return nullptr;
        }
        const bool created = !existed || (flags & H5F_ACC_TRUNC);
        if (!file->journal.begin(QFile::decodeName(name), static_cast<std::uint64_t>(before.st_size),
                                 created)) {
            pushError(__func__, H5E_FILE, H5E_CANTOPENFILE,
                      "unable to create the rollback journal next to the file");
            return nullptr;
        }
    }
    file->fd = ::open(name, mode | O_CLOEXEC, 0666);
    struct stat status
    {
    };
    if (file->fd < 0 || ::fstat(file->fd, &status) != 0) {
        pushError(__func__, H5E_FILE, H5E_CANTOPENFILE, "unable to open file");
        if (file->fd >= 0)
            ::close(file->fd);
        // Nothing was written: the journal goes as after a clean session.
        file->journal.finish();
        return nullptr;
    }
    file->eof = static_cast<haddr_t>(status.st_size);
    file->device = status.st_dev;
    file->inode = status.st_ino;
    return &file.release()->pub;
}

herr_t closeFile(H5FD_t* handle)
{
    const std::unique_ptr<DriverFile> file(fileOf(handle));
    // Cutting the file to its own size gives back the blocks reserved past its end.
    if (file->reserved > file->eof)
        ::ftruncate(file->fd, static_cast<off_t>(file->eof));
    if (file->writing && !file->failed)
        file->journal.finish();
    if (::close(file->fd) == 0)
        return 0;
    pushError(__func__, H5E_IO, H5E_CANTCLOSEFILE, "unable to close file");
    return -1;
}

int compareFiles(const H5FD_t* first, const H5FD_t* second)
{
    const DriverFile* a = fileOf(first);
    const DriverFile* b = fileOf(second);
    if (a->device != b->device)
        return a->device < b->device ? -1 : 1;
    if (a->inode != b->inode)
        return a->inode < b->inode ? -1 : 1;
    return 0;
}

herr_t queryFeatures(const H5FD_t*, unsigned long* flags)
{
    // What the library's default driver declares, so the library caches and gathers the
    // same way and the files come out the same.
    if (flags)
        *flags = H5FD_FEAT_AGGREGATE_METADATA | H5FD_FEAT_ACCUMULATE_METADATA | H5FD_FEAT_DATA_SIEVE |
                 H5FD_FEAT_AGGREGATE_SMALLDATA | H5FD_FEAT_POSIX_COMPAT_HANDLE;
    return 0;
}

haddr_t endOfAllocation(const H5FD_t* file, H5FD_mem_t)
{
    return fileOf(file)->eoa;
}

herr_t setEndOfAllocation(H5FD_t* file, H5FD_mem_t, haddr_t address)
{
    fileOf(file)->eoa = address;
    return 0;
}

haddr_t endOfFile(const H5FD_t* file, H5FD_mem_t)
{
    return fileOf(file)->eof;
}

herr_t descriptorOf(H5FD_t* file, hid_t, void** handle)
{
    *handle = &fileOf(file)->fd;
    return 0;
}

herr_t readFile(H5FD_t* handle, H5FD_mem_t, hid_t, haddr_t address, size_t size, void* buffer)
{
    DriverFile* file = fileOf(handle);
    if (outOfRange(address, size) || address + size > file->eoa) {
        H5Epush2(H5E_DEFAULT, __FILE__, __func__, __LINE__, H5E_ERR_CLS, H5E_ARGS, H5E_OVERFLOW,
                 "read past the end of allocation");
        return -1;
    }
    if (!readWholeAt(file->fd, static_cast<unsigned char*>(buffer), size, address)) {
        pushError(__func__, H5E_IO, H5E_READERROR, "file read failed");
        return -1;
    }
    return 0;
}

herr_t writeFile(H5FD_t* handle, H5FD_mem_t, hid_t, haddr_t address, size_t size, const void* buffer)
{
    DriverFile* file = fileOf(handle);
    if (outOfRange(address, size) || address + size > file->eoa) {
        H5Epush2(H5E_DEFAULT, __FILE__, __func__, __LINE__, H5E_ERR_CLS, H5E_ARGS, H5E_OVERFLOW,
                 "write past the end of allocation");
        return -1;
    }
    if (!file->journal.save(file->fd, address, size)) {
        file->failed = true;
        pushError(__func__, H5E_IO, H5E_WRITEERROR,
                  "unable to save the original bytes in the rollback journal");
        return -1;
    }
    reserve(file, address + size);
    if (!writeWholeAt(file->fd, static_cast<const unsigned char*>(buffer), size, address)) {
        file->failed = true;
        pushError(__func__, H5E_IO, H5E_WRITEERROR, "file write failed");
        return -1;
    }
    const haddr_t position = address + size;
    if (position > file->eof)
        file->eof = position;
    return 0;
}

herr_t truncateFile(H5FD_t* handle, hid_t, hbool_t)
{
    DriverFile* file = fileOf(handle);
    if (file->eoa == file->eof)
        return 0;
    // Cutting the file short destroys original bytes as surely as overwriting them.
    if (file->eoa < file->eof && !file->journal.save(file->fd, file->eoa, file->eof - file->eoa)) {
        file->failed = true;
        pushError(__func__, H5E_IO, H5E_SEEKERROR,
                  "unable to save the original bytes in the rollback journal");
        return -1;
    }
    if (::ftruncate(file->fd, static_cast<off_t>(file->eoa)) != 0) {
        file->failed = true;
        pushError(__func__, H5E_IO, H5E_SEEKERROR, "unable to extend or truncate file");
        return -1;
    }
    // A cut (not an extension) also gives back what was reserved past the new end.
    if (file->eoa <= file->eof)
        file->reserved = 0;
    file->eof = file->eoa;
    return 0;
}

herr_t lockFile(H5FD_t* file, hbool_t forWriting)
{
    if (::flock(fileOf(file)->fd, (forWriting ? LOCK_EX : LOCK_SH) | LOCK_NB) == 0 || errno == ENOSYS)
        return 0;
    pushError(__func__, H5E_FILE, H5E_BADFILE, "unable to lock file");
    return -1;
}

herr_t unlockFile(H5FD_t* file)
{
    if (::flock(fileOf(file)->fd, LOCK_UN) == 0 || errno == ENOSYS)
        return 0;
    pushError(__func__, H5E_FILE, H5E_BADFILE, "unable to unlock file");
    return -1;
}

const H5FD_class_t DriverClass = {"zarvi-journaled",
                                  MaxAddress,
                                  H5F_CLOSE_WEAK,
                                  nullptr, // terminate
                                  nullptr,
                                  nullptr,
                                  nullptr, // no driver information in the superblock
                                  0,
                                  nullptr,
                                  nullptr,
                                  nullptr, // no access properties of its own
                                  0,
                                  nullptr,
                                  nullptr, // no transfer properties of its own
                                  openFile,
                                  closeFile,
                                  compareFiles,
                                  queryFeatures,
                                  nullptr,
                                  nullptr,
                                  nullptr, // the library's type map and allocation
                                  endOfAllocation,
                                  setEndOfAllocation,
                                  endOfFile,
                                  descriptorOf,
                                  readFile,
                                  writeFile,
                                  nullptr, // flush: writes are never held back here
                                  truncateFile,
                                  lockFile,
                                  unlockFile,
                                  H5FD_FLMAP_DICHOTOMY};

} // namespace

namespace {

hid_t registeredDriver()
{
    // Registered once per process; the library keeps the class until it shuts down.
    static const hid_t driver = H5FDregister(&DriverClass);
    return driver;
}

} // namespace

bool JournaledFileDriver::use(hid_t fileAccess)
{
    const hid_t driver = registeredDriver();
    return driver >= 0 && H5Pset_driver(fileAccess, driver, nullptr) >= 0;
}

bool JournaledFileDriver::isDriver(hid_t driver)
{
    return driver >= 0 && driver == registeredDriver();
}

} // namespace zarvi
