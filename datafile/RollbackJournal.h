#pragma once

#include <QString>

#include <cstdint>
#include <map>

namespace zarvi {

/// The undo log of one read-write session of a data file, kept next to it as
/// "<file>.rollback". Before a byte the file held when the session began is changed, its
/// original value goes into the journal (synced to disk first); bytes past the original
/// end need nothing, since rolling back cuts the file to its original size. Closing the
/// session cleanly deletes the journal. A journal found without its session (the writer
/// was killed) is rolled back by the next open: every saved range is written back and the
/// file cut to its original size, so it is again bit for bit what it was; a file the
/// session created is removed. The writer holds an exclusive lock on the journal for the
/// whole session, which is how a later open tells a live session from a dead one.
/// Used by JournaledFileDriver on the thread that owns the open file.
class RollbackJournal
{
public:
    enum class Recovery
    {
        /// No journal: the file was closed cleanly.
        None,
        /// The file was rolled back (or, created by the killed session, removed).
        RolledBack,
        /// Another session is writing the file right now.
        InUse,
        /// A journal was found but could not be applied; the message says why.
        Failed
    };

    RollbackJournal() = default;
    ~RollbackJournal();
    RollbackJournal(const RollbackJournal&) = delete;
    RollbackJournal& operator=(const RollbackJournal&) = delete;

    static QString journalPath(const QString& dataPath);

    /// Starts the journal of `dataPath`, whose size is `originalSize` now; `created` when
    /// the session creates the file (or truncates it), so that rolling back removes it.
    /// False when a journal exists already (a live or unrecovered session) or cannot be made.
    bool begin(const QString& dataPath, std::uint64_t originalSize, bool created);
    /// Saves the original bytes of [address, address + length) that lie below the original
    /// size and were not saved yet, reading them from `dataFd`. Call before overwriting.
    bool save(int dataFd, std::uint64_t address, std::uint64_t length);
    /// Ends the session cleanly: the journal goes.
    void finish();

    /// Rolls back `dataPath` when a journal of a dead session is next to it.
    static Recovery recover(const QString& dataPath, QString& message);

private:
    bool appendRecord(int dataFd, std::uint64_t address, std::uint64_t length);
    bool append(const unsigned char* data, std::size_t size);

    QString m_path;
    int m_fd = -1;
    std::uint64_t m_originalSize = 0;
    /// The journal's own length: records are appended there.
    std::uint64_t m_journalSize = 0;
    bool m_synced = false;
    /// Saved ranges, start -> end, disjoint.
    std::map<std::uint64_t, std::uint64_t> m_saved;
};

} // namespace zarvi
