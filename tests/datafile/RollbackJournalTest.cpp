#include "datafile/RollbackJournal.h"
#include "common/TempDir.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>

#include <csignal>
#include <functional>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zarvi {
namespace {

QByteArray contentsOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

/// The bytes of disk the file takes up, which blocks reserved past its end would add to.
qint64 diskBytesOf(const QString& path)
{
    struct stat status
    {
    };
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? qint64{status.st_blocks} * 512 : -1;
}

/// Overwrites `bytes` at `offset` of an open descriptor, as the driver does after saving.
void overwrite(int fd, qint64 offset, const QByteArray& bytes)
{
    ASSERT_EQ(::pwrite(fd, bytes.constData(), static_cast<size_t>(bytes.size()), offset), bytes.size());
}

TEST(RollbackJournal, RestoresTheFirstValueOfEveryChangedByteAndTheOriginalSize)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("data.orvel"));
    QByteArray original(100000, '\0');
    for (int i = 0; i < original.size(); ++i)
        original[i] = static_cast<char>(i * 7 + 3);
    writeFile(path, original);

    const int fd = ::open(QFile::encodeName(path).constData(), O_RDWR);
    ASSERT_GE(fd, 0);
    {
        RollbackJournal journal;
        ASSERT_TRUE(journal.begin(path, static_cast<std::uint64_t>(original.size()), false));
        // A second session cannot start while this one lives, and an open sees it as in use.
        RollbackJournal second;
        EXPECT_FALSE(second.begin(path, static_cast<std::uint64_t>(original.size()), false));
        QString message;
        EXPECT_EQ(RollbackJournal::recover(path, message), RollbackJournal::Recovery::InUse);

        // Overlapping changes: [10, 20), then [15, 40) after [10, 20) changed, then one range
        // that runs past the original end, and one wholly past it.
        ASSERT_TRUE(journal.save(fd, 10, 10));
        overwrite(fd, 10, QByteArray(10, 'a'));
        ASSERT_TRUE(journal.save(fd, 15, 25));
        overwrite(fd, 15, QByteArray(25, 'b'));
        ASSERT_TRUE(journal.save(fd, 99990, 20));
        overwrite(fd, 99990, QByteArray(20, 'c'));
        ASSERT_TRUE(journal.save(fd, 200000, 8));
        overwrite(fd, 200000, QByteArray(8, 'd'));
        // A range bigger than one record is split and still comes back whole.
        ASSERT_TRUE(journal.save(fd, 50000, 40000));
        overwrite(fd, 50000, QByteArray(40000, 'e'));
        // The session dies here: no finish().
    }
    ::close(fd);
    EXPECT_NE(contentsOf(path), original);
    EXPECT_TRUE(QFileInfo::exists(RollbackJournal::journalPath(path)));

    QString message;
    EXPECT_EQ(RollbackJournal::recover(path, message), RollbackJournal::Recovery::RolledBack);
    EXPECT_EQ(contentsOf(path), original);
    EXPECT_FALSE(QFileInfo::exists(RollbackJournal::journalPath(path)));
    EXPECT_EQ(RollbackJournal::recover(path, message), RollbackJournal::Recovery::None);
}

TEST(RollbackJournal, IgnoresARecordCutShortAndRemovesAFileTheSessionCreated)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("data.orvel"));
    const QByteArray original(4096, 'x');
    writeFile(path, original);
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDWR);
    {
        RollbackJournal journal;
        ASSERT_TRUE(journal.begin(path, 4096, false));
        ASSERT_TRUE(journal.save(fd, 0, 100));
        overwrite(fd, 0, QByteArray(100, 'y'));
        ASSERT_TRUE(journal.save(fd, 1000, 100));
    }
    ::close(fd);
    // The kill came while the second record was being written, before its range changed.
    const QString journalPath = RollbackJournal::journalPath(path);
    QFile::resize(journalPath, QFileInfo(journalPath).size() - 5);
    QString message;
    EXPECT_EQ(RollbackJournal::recover(path, message), RollbackJournal::Recovery::RolledBack);
    EXPECT_EQ(contentsOf(path), original);

    const QString created = dir.file(QStringLiteral("new.orvel"));
    {
        RollbackJournal journal;
        ASSERT_TRUE(journal.begin(created, 0, true));
        writeFile(created, QByteArray(300, 'z'));
    }
    EXPECT_EQ(RollbackJournal::recover(created, message), RollbackJournal::Recovery::RolledBack);
    EXPECT_FALSE(QFileInfo::exists(created));
}

/// Runs `work` in a child process, which `work` ends with SIGKILL while its file is open,
/// as a killed run would.
void inKilledChild(const std::function<void()>& work)
{
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        work();
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

TEST(JournaledFileDriver, AWriterKilledMidRunLeavesTheFileAsItWasForTheNextOpen)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("data.orvel"));
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.create(path), 0);
        const hid_t group = writer.createGroupPath(writer.fileId(), QStringLiteral("Data/Before"));
        const hid_t dataset = writer.create1D(group, ElementKind::Float64, QStringLiteral("Signal"), 1000);
        const std::vector<double> values(1000, 2.5);
        ASSERT_TRUE(writer.append(dataset, values.data(), {1000}));
        writer.closeDataset(dataset);
        writer.closeGroup(group);
        writer.closeFile();
    }
    EXPECT_FALSE(QFileInfo::exists(RollbackJournal::journalPath(path)));
    const QByteArray before = contentsOf(path);

    inKilledChild([&] {
        HDF5Writer_V6 writer;
        if (writer.open(path) < 0)
            return;
        // Many new groups and a flush half-way, so the old groups' structures are rewritten.
        for (int i = 0; i < 300; ++i) {
            const hid_t group = writer.createGroupPath(writer.fileId(), QStringLiteral("Data/New%1").arg(i));
            writer.writeAttribute(group, QStringLiteral("Index"), i);
            writer.closeGroup(group);
            if (i == 150)
                writer.flush();
        }
        writer.writeAttribute(writer.fileId(), QStringLiteral("Edited"), QStringLiteral("now"));
        writer.flush();
        ::raise(SIGKILL);
    });
    EXPECT_TRUE(QFileInfo::exists(RollbackJournal::journalPath(path)));
    EXPECT_NE(contentsOf(path), before);

    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(path), 0) << reader.lastError().toStdString();
    EXPECT_EQ(reader.children(reader.fileId()), QStringList{QStringLiteral("Data")});
    reader.closeFile();
    EXPECT_EQ(contentsOf(path), before);

    // A creation killed half-way leaves no file at all.
    const QString created = dir.file(QStringLiteral("created.orvel"));
    inKilledChild([&] {
        HDF5Writer_V6 writer;
        if (writer.create(created) >= 0)
            writer.createGroupPath(writer.fileId(), QStringLiteral("Data/Half"));
        ::raise(SIGKILL);
    });
    EXPECT_TRUE(QFileInfo::exists(created));
    HDF5Reader_V6 second;
    EXPECT_LT(second.open(created), 0);
    EXPECT_FALSE(QFileInfo::exists(created));
    EXPECT_FALSE(QFileInfo::exists(RollbackJournal::journalPath(created)));
}

TEST(JournaledFileDriver, AWriteThatFailsLeavesTheJournalSoTheFileIsRolledBack)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("data.orvel"));
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.create(path), 0);
        writer.closeGroup(writer.createGroupPath(writer.fileId(), QStringLiteral("Data/Before")));
        writer.closeFile();
    }
    const QByteArray before = contentsOf(path);

    // A full disk, made by a file-size limit a little above the file's size: the run's
    // data cannot be written, and the session ends through the normal close.
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{static_cast<rlim_t>(before.size() + 65536),
                           static_cast<rlim_t>(before.size() + 65536)};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        HDF5Writer_V6 writer;
        if (writer.open(path) < 0)
            ::_exit(2);
        const hid_t group = writer.createGroupPath(writer.fileId(), QStringLiteral("Data/Run"));
        const hid_t dataset = writer.create1D(group, ElementKind::Float64, QStringLiteral("Signal"), 1 << 20);
        const std::vector<double> values(1 << 20, 1.5);
        const bool written = writer.append(dataset, values.data(), {values.size()}) && writer.flush();
        writer.closeDataset(dataset);
        writer.closeGroup(group);
        writer.closeFile();
        ::_exit(written ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    ASSERT_EQ(WEXITSTATUS(status), 0) << "the write was expected to fail";
    EXPECT_TRUE(QFileInfo::exists(RollbackJournal::journalPath(path)));

    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(path), 0) << reader.lastError().toStdString();
    reader.closeFile();
    EXPECT_EQ(contentsOf(path), before);
    EXPECT_LE(diskBytesOf(path), before.size() + 65536) << "blocks reserved for the run were kept";
}

TEST(JournaledFileDriver, DiskBlocksReservedAheadOfTheWritesAreGivenBackOnClosing)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("data.orvel"));
    const std::vector<double> values(1 << 18, 0.5);
    for (int session = 0; session < 2; ++session) {
        HDF5Writer_V6 writer;
        ASSERT_GE(session == 0 ? writer.create(path) : writer.open(path), 0);
        const hid_t group =
            writer.createGroupPath(writer.fileId(), QStringLiteral("Data/Run%1").arg(session));
        const hid_t dataset = writer.create1D(group, ElementKind::Float64, QStringLiteral("Signal"), 1 << 18);
        ASSERT_TRUE(writer.append(dataset, values.data(), {values.size()}));
        writer.closeDataset(dataset);
        writer.closeGroup(group);
        writer.closeFile();
        // Each session wrote 2 MB; what it reserved ahead of that is gone with it.
        const qint64 size = QFileInfo(path).size();
        EXPECT_GT(size, (session + 1) * 2'000'000);
        EXPECT_LE(diskBytesOf(path), size + 65536);
    }
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(path), 0);
    const hid_t dataset = reader.openDataset(reader.fileId(), QStringLiteral("Data/Run1/Signal"));
    std::vector<double> read;
    ASSERT_TRUE(reader.read(dataset, read));
    EXPECT_EQ(read, values);
    reader.closeDataset(dataset);
}

} // namespace
} // namespace zarvi
