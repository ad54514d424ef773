#include "DataFileTestSupport.h"
#include "common/TempDir.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"

#include <limits>
#include <numeric>

using namespace zarvi;
using zarvi::test::TempDir;

TEST(HDF5Dataset, StreamChunksFollowTheExpectedLength)
{
    TempDir dir;
    HDF5Writer_V6 writer;
    const hid_t file = writer.create(dir.file(QStringLiteral("streams.orvel")));
    ASSERT_GE(file, 0);

    const hid_t shortStream = writer.create1D(file, ElementKind::Float64, QStringLiteral("Short"), 1000);
    EXPECT_EQ(writer.chunkDimensions(shortStream), std::vector<hsize_t>{1000});
    EXPECT_EQ(writer.dimensions(shortStream), std::vector<hsize_t>{0});
    EXPECT_EQ(writer.maximumDimensions(shortStream), std::vector<hsize_t>{H5S_UNLIMITED});
    const hid_t empty = writer.create1D(file, ElementKind::Float64, QStringLiteral("Empty"), 0);
    EXPECT_EQ(writer.chunkDimensions(empty), std::vector<hsize_t>{1});

    const hid_t longStream = writer.create1D(file, ElementKind::Float64, QStringLiteral("Long"), 100000);
    EXPECT_EQ(writer.chunkDimensions(longStream), std::vector<hsize_t>{65536});
    std::vector<double> values(100000);
    std::iota(values.begin(), values.end(), 0.0);
    // Appended in two unequal parts: the second lands at the old end.
    ASSERT_TRUE(writer.append(longStream, values.data(), {70000}));
    ASSERT_TRUE(writer.append(longStream, values.data() + 70000, {30000}));
    EXPECT_EQ(writer.dimensions(longStream), std::vector<hsize_t>{100000});
    std::vector<double> range;
    ASSERT_TRUE(writer.read(longStream, {69998}, {4}, range));
    EXPECT_EQ(range, (std::vector<double>{69998, 69999, 70000, 70001}));
    for (const hid_t id : {shortStream, empty, longStream})
        writer.closeDataset(id);
}

TEST(HDF5Dataset, DeflateLevelIsStoredOnlyWhenAskedFor)
{
    TempDir dir;
    HDF5Writer_V6 writer;
    const hid_t file = writer.create(dir.file(QStringLiteral("deflate.orvel")));
    const std::vector<double> zeros(4096, 0.0);
    for (const int level : {0, 4}) {
        const hid_t d = writer.createDataset(file, ElementKind::Float64, QStringLiteral("D%1").arg(level), 1,
                                             {H5S_UNLIMITED}, {1024}, {0}, level);
        ASSERT_GE(d, 0) << writer.lastError().toStdString();
        EXPECT_EQ(writer.chunkDimensions(d), std::vector<hsize_t>{1024});
        EXPECT_EQ(writer.deflateLevel(d), level);
        ASSERT_TRUE(writer.append(d, zeros.data(), {zeros.size()}));
        ASSERT_TRUE(writer.flush());
        if (level == 0)
            EXPECT_EQ(writer.storageSize(d), zeros.size() * sizeof(double));
        else
            EXPECT_LT(writer.storageSize(d), zeros.size() * sizeof(double) / 10);
        writer.closeDataset(d);
    }
    EXPECT_LT(writer.createDataset(file, ElementKind::Float64, QStringLiteral("Bad"), 1, {H5S_UNLIMITED}, {8},
                                   {0}, 10),
              0);
}

TEST(HDF5Dataset, ImageStackStartsEmptyAndGrowsByFrames)
{
    TempDir dir;
    const QString path = dir.file(QStringLiteral("stack.orvel"));
    constexpr hsize_t height = 4, width = 3;
    const auto frameValue = [](hsize_t frame, hsize_t y, hsize_t x) {
        return static_cast<std::uint16_t>(1000 * frame + 10 * y + x);
    };
    {
        HDF5Writer_V6 writer;
        const hid_t file = writer.create(path);
        const hid_t stack = writer.createImageStack(file, QStringLiteral("ImageStack"), 4, 3, 28, 12, 0);
        ASSERT_GE(stack, 0) << writer.lastError().toStdString();
        EXPECT_EQ(writer.dimensions(stack), (std::vector<hsize_t>{height, width, 0}));
        EXPECT_EQ(writer.maximumDimensions(stack), (std::vector<hsize_t>{height, width, H5S_UNLIMITED}));
        EXPECT_EQ(writer.chunkDimensions(stack), (std::vector<hsize_t>{height, width, 1}));
        std::vector<std::uint16_t> nothing;
        EXPECT_TRUE(writer.read(stack, nothing));
        EXPECT_TRUE(nothing.empty());

        // Frame 0 alone, then frames 1 and 2 in one block (frames are the fastest axis).
        std::vector<std::uint16_t> frame0(height * width), frames12(height * width * 2);
        for (hsize_t y = 0; y < height; ++y)
            for (hsize_t x = 0; x < width; ++x) {
                frame0[y * width + x] = frameValue(0, y, x);
                for (hsize_t k = 0; k < 2; ++k)
                    frames12[(y * width + x) * 2 + k] = frameValue(k + 1, y, x);
            }
        ASSERT_TRUE(writer.append(stack, frame0.data(), {height, width, 1}));
        ASSERT_TRUE(writer.append(stack, frames12.data(), {height, width, 2}));
        EXPECT_FALSE(writer.append(stack, frame0.data(), {height, width - 1, 1}));
        EXPECT_EQ(writer.dimensions(stack), (std::vector<hsize_t>{height, width, 3}));
    }
    HDF5Reader_V6 reader;
    const hid_t file = reader.open(path);
    const hid_t stack = reader.openDataset(file, QStringLiteral("ImageStack"));
    ASSERT_GE(stack, 0);
    EXPECT_EQ(reader.readAllAttributes(stack),
              (QVariantMap{{"BitCount", 12}, {"Format", 28}, {"Height", 4}, {"Width", 3}}));
    const ElementType type = reader.elementType(stack);
    EXPECT_EQ(type.elementClass, ElementClass::Integer);
    EXPECT_EQ(type.size, 2u);
    EXPECT_FALSE(type.isSigned);

    std::vector<std::uint16_t> frame(height * width);
    ASSERT_TRUE(reader.read(stack, {0, 0, 1}, {height, width, 1}, frame.data()));
    std::vector<double> frameAsDouble;
    ASSERT_TRUE(reader.read(stack, {0, 0, 2}, {height, width, 1}, frameAsDouble));
    for (hsize_t y = 0; y < height; ++y)
        for (hsize_t x = 0; x < width; ++x) {
            EXPECT_EQ(frame[y * width + x], frameValue(1, y, x));
            EXPECT_EQ(frameAsDouble[y * width + x], frameValue(2, y, x));
        }
}

template <typename T> class HDF5ElementKind : public ::testing::Test
{
};
using AllElementTypes = ::testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
                                         std::uint32_t, std::int64_t, std::uint64_t, float, double>;
TYPED_TEST_SUITE(HDF5ElementKind, AllElementTypes);

TYPED_TEST(HDF5ElementKind, RoundTripsWholeAndByBlock)
{
    using T = TypeParam;
    constexpr hsize_t rows = 4, columns = 5;
    std::vector<T> values(rows * columns);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<T>(3 * i + 1);
    values[0] = std::numeric_limits<T>::lowest();
    values[1] = std::numeric_limits<T>::max();

    TempDir dir;
    const QString path = dir.file(QStringLiteral("kinds.orvel"));
    {
        HDF5Writer_V6 writer;
        const hid_t file = writer.create(path);
        const hid_t d = writer.createDataset(file, elementKindOf<T>(), QStringLiteral("D"), 2,
                                             {rows, columns}, {2, columns}, {rows, columns}, 0);
        ASSERT_GE(d, 0) << writer.lastError().toStdString();
        ASSERT_TRUE(writer.write(d, values.data(), {0, 0}, {rows, columns}));
    }
    HDF5Reader_V6 reader;
    const hid_t d = reader.openDataset(reader.open(path), QStringLiteral("D"));
    ASSERT_GE(d, 0) << reader.lastError().toStdString();
    const ElementType type = reader.elementType(d);
    EXPECT_EQ(type.elementClass, std::is_floating_point_v<T> ? ElementClass::Float : ElementClass::Integer);
    EXPECT_EQ(type.size, sizeof(T));
    EXPECT_EQ(type.isSigned, std::is_signed_v<T>);

    std::vector<T> whole;
    ASSERT_TRUE(reader.read(d, whole));
    EXPECT_EQ(whole, values);

    std::vector<T> block;
    ASSERT_TRUE(reader.read(d, {1, 2}, {2, 3}, block));
    ASSERT_EQ(block.size(), 6u);
    for (hsize_t r = 0; r < 2; ++r)
        for (hsize_t c = 0; c < 3; ++c)
            EXPECT_EQ(block[r * 3 + c], values[(1 + r) * columns + 2 + c]);
}

// Whole chunks move past the chunk cache; partial writes go through it. Mixing
// the two on one chunk must never let a stale copy win.
TEST(HDF5Dataset, WholeChunkAndPartialAccessAgreeOnTheSameChunk)
{
    TempDir dir;
    HDF5Writer_V6 writer;
    const hid_t file = writer.create(dir.file(QStringLiteral("mixed.orvel")));
    const hid_t stream = writer.create1D(file, ElementKind::Float64, QStringLiteral("Stream"), 8);
    std::vector<double> whole(8);
    std::iota(whole.begin(), whole.end(), 0.0);
    ASSERT_TRUE(writer.append(stream, whole.data(), {8}));

    // A partial write lands in the cache; a whole-chunk read must see it.
    const double patched = -5.0;
    ASSERT_TRUE(writer.write(stream, &patched, {3}, {1}));
    std::vector<double> read(8);
    ASSERT_TRUE(writer.read(stream, {0}, {8}, read.data()));
    EXPECT_EQ(read[3], -5.0);

    // A partial write, then a whole-chunk write: the whole chunk wins, also after closing.
    ASSERT_TRUE(writer.write(stream, &patched, {5}, {1}));
    std::vector<double> replacement(8, 42.0);
    ASSERT_TRUE(writer.write(stream, replacement.data(), {0}, {8}));
    ASSERT_TRUE(writer.read(stream, {0}, {8}, read.data()));
    EXPECT_EQ(read, replacement);

    // A block over several chunks goes straight to the file chunk by chunk, and its end,
    // part of a chunk, through the cache: neither may lose to a partial copy cached before.
    ASSERT_TRUE(writer.append(stream, whole.data(), {8}));
    ASSERT_TRUE(writer.write(stream, &patched, {12}, {1}));
    std::vector<double> longer(20);
    std::iota(longer.begin(), longer.end(), 100.0);
    ASSERT_TRUE(writer.append(stream, longer.data(), {4}));
    ASSERT_TRUE(writer.write(stream, longer.data(), {0}, {20}));
    writer.closeDataset(stream);
    writer.closeFile();

    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(dir.file(QStringLiteral("mixed.orvel"))), 0);
    const hid_t again = reader.openDataset(reader.fileId(), QStringLiteral("Stream"));
    std::vector<double> stored;
    ASSERT_TRUE(reader.read(again, stored));
    EXPECT_EQ(stored, longer);
    // Read as another type, the same chunk goes through conversion.
    std::vector<float> converted;
    ASSERT_TRUE(reader.read(again, converted));
    EXPECT_EQ(converted[19], 119.0f);
    reader.closeDataset(again);
}

TEST(HDF5Dataset, LongWholeReadsGiveEverySampleWhateverTheLayout)
{
    // Long enough to be read straight from the file on two threads; the last chunk is
    // partly filled, and the tail is appended without whole chunks, so part of it may still
    // sit in the library's chunk cache when it is read back through the open dataset.
    const std::size_t n = 1'500'001;
    const auto expected = [](std::size_t i) { return 0.25 * static_cast<double>(i) - 3.0; };
    std::vector<double> values(n);
    for (std::size_t i = 0; i < n; ++i)
        values[i] = expected(i);
    const auto expectEverySample = [&](const std::vector<double>& read, const char* what) {
        ASSERT_EQ(read.size(), n) << what;
        std::size_t wrong = 0;
        for (std::size_t i = 0; i < n; ++i)
            wrong += read[i] == expected(i) ? 0 : 1;
        EXPECT_EQ(wrong, 0u) << what;
    };

    TempDir dir;
    const QString path = dir.file(QStringLiteral("long.orvel"));
    {
        HDF5Writer_V6 writer;
        const hid_t file = writer.create(path);
        ASSERT_GE(file, 0);
        const hid_t plain = writer.create1D(file, ElementKind::Float64, QStringLiteral("Plain"), n);
        ASSERT_TRUE(writer.append(plain, values.data(), {n - 1001}));
        ASSERT_TRUE(writer.append(plain, values.data() + n - 1001, {1001}));
        // Packed chunks are not the bytes in memory: the library unpacks them.
        const hid_t packed = writer.createDataset(file, ElementKind::Float64, QStringLiteral("Packed"), 1,
                                                  {H5S_UNLIMITED}, {65536}, {0}, 4);
        ASSERT_TRUE(writer.append(packed, values.data(), {n}));
        std::vector<double> read;
        ASSERT_TRUE(writer.read(plain, read));
        expectEverySample(read, "open for writing");
        // Read again into the vector that already holds a signal, as operations do.
        read.assign(n, 0.0);
        ASSERT_TRUE(writer.read(packed, read));
        expectEverySample(read, "packed");
        writer.closeDataset(plain);
        writer.closeDataset(packed);
    }
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(path), 0);
    for (const char* name : {"Plain", "Packed"}) {
        const hid_t dataset = reader.openDatasetForWholeRead(reader.fileId(), QString::fromLatin1(name));
        std::vector<double> read;
        ASSERT_TRUE(reader.read(dataset, read));
        expectEverySample(read, name);
        reader.closeDataset(dataset);
    }
}
