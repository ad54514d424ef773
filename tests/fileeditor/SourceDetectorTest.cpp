#include "ConvertTestSupport.h"
#include "RecordingTestFiles.h"

#include "datafile/HDF5Writer_V6.h"
#include "fileeditor/SourceDetector.h"

namespace zarvi {
namespace {

TEST(SourceDetector, TellsFormatsByTheirContentNotTheirName)
{
    test::TempDir dir;
    const auto written = [&](const QString& name, const QByteArray& bytes) {
        const QString path = dir.file(name);
        EXPECT_TRUE(test::writeBytes(path, bytes));
        return path;
    };
    // A .ppd renamed .dat is still found by its header.
    EXPECT_EQ(SourceDetector::detect(written(
                  "rec.dat", test::ppdBytes(100, "2 colour continuous", {1e-4}, {{1, 2}, {3, 4}}, {}))),
              SourceFormat::PyPhotometry);
    EXPECT_EQ(
        SourceDetector::detect(written("npm.txt", "FrameCounter,Timestamp,LedState,Region0G\n0,1,1,5\n")),
        SourceFormat::Neurophotometrics);
    EXPECT_EQ(SourceDetector::detect(written("table.ppd", "Time,Green\n0,1\n")), SourceFormat::Spreadsheet);
    EXPECT_EQ(SourceDetector::detect(written("book.csv", QByteArray("PK\x03\x04rest", 8))),
              SourceFormat::Workbook);
    EXPECT_EQ(SourceDetector::detect(written("stack.bin", QByteArray("II*\0....", 8))),
              SourceFormat::TiffStack);
    EXPECT_EQ(SourceDetector::detect(written("noise.csv", QByteArray("\x01\x02\x03\x00\x05", 5))),
              SourceFormat::Unknown);

    HDF5Writer_V6 writer;
    ASSERT_GE(writer.create(dir.file("data.orvel")), 0);
    writer.closeFile();
    EXPECT_EQ(SourceDetector::detect(dir.file("data.orvel")), SourceFormat::HDF5);

    test::TdtBlockBuilder block(0.0);
    block.stop(1.0);
    ASSERT_TRUE(block.write(dir.file("Block-1"), "b"));
    EXPECT_EQ(SourceDetector::detect(dir.file("Block-1")), SourceFormat::TdtBlock);
    EXPECT_EQ(SourceDetector::detect(dir.file("Block-1/b.tev")), SourceFormat::TdtBlock);
}

} // namespace
} // namespace zarvi
