#include <gtest/gtest.h>

#include <QFile>

#include <array>
#include <cerrno>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "common/TempDir.h"
#include "datafile/WriteBehind.h"

namespace zarvi {
namespace {

unsigned char patternAt(std::size_t block, std::size_t i)
{
    return static_cast<unsigned char>(block * 7 + i * 13 + i / 251);
}

// Two buffers given in turn, each refilled as soon as start() of the other returns: a
// start() that returned before the write of the buffer it frees had finished would let
// the refill into that write.
TEST(WriteBehind, EachBufferIsFreeAgainOnceTheNextWriteHasStarted)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("blocks.bin"));
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_TRUNC, 0644);
    ASSERT_GE(fd, 0);
    constexpr std::size_t BlockBytes = 96 * 1024;
    constexpr std::size_t Blocks = 120;
    std::array<std::vector<unsigned char>, 2> buffers{std::vector<unsigned char>(BlockBytes),
                                                      std::vector<unsigned char>(BlockBytes)};
    {
        WriteBehind writer(fd);
        for (std::size_t block = 0; block < Blocks; ++block) {
            std::vector<unsigned char>& buffer = buffers[block % 2];
            for (std::size_t i = 0; i < BlockBytes; ++i)
                buffer[i] = patternAt(block, i);
            ASSERT_TRUE(writer.start(buffer.data(), buffer.size(), block * BlockBytes));
        }
        ASSERT_TRUE(writer.finish());
        EXPECT_EQ(writer.error(), 0);
    }
    ::close(fd);

    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray written = file.readAll();
    ASSERT_EQ(static_cast<std::size_t>(written.size()), Blocks * BlockBytes);
    std::size_t wrong = 0;
    for (std::size_t block = 0; block < Blocks; ++block) {
        for (std::size_t i = 0; i < BlockBytes; ++i)
            wrong += static_cast<unsigned char>(written[static_cast<qsizetype>(block * BlockBytes + i)]) !=
                     patternAt(block, i);
    }
    EXPECT_EQ(wrong, 0u);
}

TEST(WriteBehind, AFailedWriteIsReportedAndNothingMoreIsStarted)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("read-only.bin"));
    ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly));
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    ASSERT_GE(fd, 0);
    const std::vector<unsigned char> buffer(4096, 1);
    {
        WriteBehind writer(fd);
        // The write itself fails on the writing thread; the caller hears of it next.
        EXPECT_TRUE(writer.start(buffer.data(), buffer.size(), 0));
        EXPECT_FALSE(writer.finish());
        EXPECT_EQ(writer.error(), EBADF);
        EXPECT_FALSE(writer.start(buffer.data(), buffer.size(), 4096));
        EXPECT_FALSE(writer.finish());
    }
    ::close(fd);
}

} // namespace
} // namespace zarvi
