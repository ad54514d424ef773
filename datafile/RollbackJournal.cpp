#include "datafile/RollbackJournal.h"

#include "datafile/PositionedIo.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace zarvi {

namespace {

constexpr std::array<char, 8> Magic{'Z', 'R', 'V', 'R', 'O', 'L', 'L', '1'};
constexpr std::uint64_t CreatedFlag = 1;
constexpr std::size_t HeaderSize = 24;
/// Large saved ranges go in records of at most this many bytes, so memory stays small.
constexpr std::uint64_t MaxRecordBytes = std::uint64_t{4} << 20;

struct Header
{
    std::uint64_t originalSize = 0;
    std::uint64_t flags = 0;
};

void putWord(unsigned char* out, std::uint64_t value)
{
    for (int i = 0; i < 8; ++i)
        out[i] = static_cast<unsigned char>(value >> (8 * i));
}

std::uint64_t wordAt(const unsigned char* in)
{
    std::uint64_t value = 0;
    for (int i = 7; i >= 0; --i)
        value = (value << 8) | in[i];
    return value;
}

/// FNV-1a: enough to tell a whole record from one cut short or never written, which is
/// all the check is for; Qt Core only offers a 16-bit checksum.
std::uint64_t checksum(const unsigned char* data, std::size_t size)
{
    std::uint64_t hash = 0xcbf29ce484222325ULL;
    for (std::size_t i = 0; i < size; ++i) {
        hash ^= data[i];
        hash *= 0x100000001b3ULL;
    }
    return hash;
}

/// Makes the journal's name in its folder durable, so that a power cut after the first
/// overwrite cannot lose the journal itself.
void syncFolderOf(const QString& path)
{
    const int folder = ::open(QFile::encodeName(QFileInfo(path).absolutePath()).constData(), O_RDONLY);
    if (folder >= 0) {
        ::fsync(folder);
        ::close(folder);
    }
}

QString failedMessage(const QString& dataPath, const QString& reason)
{
    return QStringLiteral("File <b>%1</b> was left half-written by a run that was stopped, and "
                          "it could not be restored from <b>%2</b>: %3")
        .arg(dataPath, RollbackJournal::journalPath(dataPath), reason);
}

/// Writes every whole record of the journal `fd` back into the file; a record cut short
/// ends the list, since its range was never overwritten.
bool applyRecords(int fd, int dataFd, QString& reason)
{
    std::uint64_t offset = HeaderSize;
    std::vector<unsigned char> record;
    for (;;) {
        unsigned char head[16];
        const ssize_t got = ::pread(fd, head, sizeof head, static_cast<off_t>(offset));
        if (got != static_cast<ssize_t>(sizeof head))
            return true;
        const std::uint64_t length = wordAt(head + 8);
        if (length == 0 || length > MaxRecordBytes)
            return true;
        record.resize(16 + length + 8);
        if (::pread(fd, record.data(), record.size(), static_cast<off_t>(offset)) !=
            static_cast<ssize_t>(record.size()))
            return true;
        if (checksum(record.data(), 16 + length) != wordAt(record.data() + 16 + length))
            return true;
        if (!writeWholeAt(dataFd, record.data() + 16, length, wordAt(record.data()))) {
            reason = QString::fromLocal8Bit(std::strerror(errno));
            return false;
        }
        offset += record.size();
    }
}

} // namespace

RollbackJournal::~RollbackJournal()
{
    // A session that ends without finish() keeps its journal on disk: the next open
    // rolls the file back. Only the descriptor (and with it the lock) goes.
    if (m_fd >= 0)
        ::close(m_fd);
}

QString RollbackJournal::journalPath(const QString& dataPath)
{
    return dataPath + QStringLiteral(".rollback");
}

bool RollbackJournal::begin(const QString& dataPath, std::uint64_t originalSize, bool created)
{
    m_path = journalPath(dataPath);
    m_originalSize = created ? 0 : originalSize;
    unsigned char header[HeaderSize];
    std::memcpy(header, Magic.data(), Magic.size());
    putWord(header + 8, m_originalSize);
    putWord(header + 16, created ? CreatedFlag : 0);
    // Made whole and locked before it gets its name (which fails when a journal is there):
    // another open never sees a journal that is unlocked or without its header. An unnamed
    // file leaves nothing behind when the kill comes first; where the file system (or a
    // missing /proc) does not allow one, a name of its own stands in.
    const QByteArray name = QFile::encodeName(m_path);
    const QByteArray folder = QFile::encodeName(QFileInfo(m_path).absolutePath());
    for (const bool unnamed : {true, false}) {
        const QByteArray staging = name + "." + QByteArray::number(::getpid());
        m_fd = unnamed ? ::open(folder.constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0644)
                       : ::open(staging.constData(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (m_fd < 0)
            continue;
        m_journalSize = 0;
        bool ok = ::flock(m_fd, LOCK_EX | LOCK_NB) == 0 && append(header, sizeof header);
        if (unnamed) {
            const QByteArray self = "/proc/self/fd/" + QByteArray::number(m_fd);
            ok = ok &&
                 ::linkat(AT_FDCWD, self.constData(), AT_FDCWD, name.constData(), AT_SYMLINK_FOLLOW) == 0;
        } else {
            ok = ok && ::link(staging.constData(), name.constData()) == 0;
            ::unlink(staging.constData());
        }
        if (ok)
            return true;
        const bool taken = errno == EEXIST;
        ::close(m_fd);
        m_fd = -1;
        if (taken)
            return false;
    }
    return false;
}

bool RollbackJournal::appendRecord(int dataFd, std::uint64_t address, std::uint64_t length)
{
    std::vector<unsigned char> record(16 + length + 8);
    putWord(record.data(), address);
    putWord(record.data() + 8, length);
    if (!readWholeAt(dataFd, record.data() + 16, length, address))
        return false;
    putWord(record.data() + 16 + length, checksum(record.data(), 16 + length));
    return append(record.data(), record.size());
}

bool RollbackJournal::append(const unsigned char* data, std::size_t size)
{
    if (!writeWholeAt(m_fd, data, size, m_journalSize))
        return false;
    m_journalSize += size;
    return true;
}

bool RollbackJournal::save(int dataFd, std::uint64_t address, std::uint64_t length)
{
    const std::uint64_t end = std::min(address + length, m_originalSize);
    if (m_fd < 0 || address >= end)
        return true;
    bool appended = false;
    std::uint64_t position = address;
    while (position < end) {
        // The saved range holding `position`, or else the next one after it.
        auto next = m_saved.upper_bound(position);
        if (next != m_saved.begin() && std::prev(next)->second > position) {
            position = std::prev(next)->second;
            continue;
        }
        const std::uint64_t gapEnd = next == m_saved.end() ? end : std::min(end, next->first);
        for (std::uint64_t from = position; from < gapEnd; from += MaxRecordBytes) {
            if (!appendRecord(dataFd, from, std::min(MaxRecordBytes, gapEnd - from)))
                return false;
        }
        appended = true;
        // Joined with its neighbours, the map stays as small as the changed places are few.
        std::uint64_t start = position;
        std::uint64_t stop = gapEnd;
        if (next != m_saved.begin() && std::prev(next)->second == start) {
            start = std::prev(next)->first;
            m_saved.erase(std::prev(next));
        }
        if (next != m_saved.end() && next->first == stop) {
            stop = next->second;
            m_saved.erase(next);
        }
        m_saved[start] = stop;
        position = gapEnd;
    }
    if (!appended)
        return true;
    // The original bytes must be on disk before the file's own bytes change.
    if (::fdatasync(m_fd) != 0)
        return false;
    if (!m_synced) {
        syncFolderOf(m_path);
        m_synced = true;
    }
    return true;
}

void RollbackJournal::finish()
{
    if (m_fd < 0)
        return;
    // The file's new bytes are left to the system's write-back rather than synced here:
    // a sync would cost every run a full write of its output to the disk. The journal
    // covers a killed program; a power cut in the seconds after a run is left to repair.
    ::unlink(QFile::encodeName(m_path).constData());
    ::close(m_fd);
    m_fd = -1;
}

RollbackJournal::Recovery RollbackJournal::recover(const QString& dataPath, QString& message)
{
    const QByteArray journalName = QFile::encodeName(journalPath(dataPath));
    const int fd = ::open(journalName.constData(), O_RDWR | O_CLOEXEC);
    if (fd < 0) {
        if (errno == ENOENT)
            return Recovery::None;
        message = failedMessage(dataPath, QString::fromLocal8Bit(std::strerror(errno)));
        return Recovery::Failed;
    }
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        ::close(fd);
        return Recovery::InUse;
    }
    unsigned char header[HeaderSize];
    const bool whole = ::pread(fd, header, sizeof header, 0) == static_cast<ssize_t>(sizeof header) &&
                       std::memcmp(header, Magic.data(), Magic.size()) == 0;
    const QByteArray dataName = QFile::encodeName(dataPath);
    Recovery result = Recovery::RolledBack;
    if (!whole) {
        // Not one of ours, or cut short by a failing disk: there is nothing to restore from.
        result = Recovery::None;
    } else if (wordAt(header + 16) & CreatedFlag) {
        ::unlink(dataName.constData());
    } else if (const int dataFd = ::open(dataName.constData(), O_RDWR | O_CLOEXEC); dataFd >= 0) {
        QString reason;
        const bool ok = applyRecords(fd, dataFd, reason) &&
                        ::ftruncate(dataFd, static_cast<off_t>(wordAt(header + 8))) == 0 &&
                        ::fdatasync(dataFd) == 0;
        if (!ok && reason.isEmpty())
            reason = QString::fromLocal8Bit(std::strerror(errno));
        ::close(dataFd);
        if (!ok) {
            ::close(fd);
            message = failedMessage(dataPath, reason);
            return Recovery::Failed;
        }
    } else if (errno != ENOENT) {
        message = failedMessage(dataPath, QString::fromLocal8Bit(std::strerror(errno)));
        ::close(fd);
        return Recovery::Failed;
    }
    ::unlink(journalName.constData());
    ::close(fd);
    return result;
}

} // namespace zarvi
