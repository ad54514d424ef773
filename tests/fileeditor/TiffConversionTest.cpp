#include "ConvertTestSupport.h"

#include <QDir>

#include "datafile/HDF5Writer_V6.h"
#include "fileeditor/TiffStackConverter.h"
#include "fileeditor/TiffStackWriter.h"

namespace zarvi {
namespace {

using test::storedDataset;
using test::storedFrame;
using test::storedValues;
using FD = FileDefinitions;

constexpr int Width = 37;
constexpr int Height = 23;

TiffStackConversionConfig tiffConfig(const QString& source, const QString& file, const QString& device,
                                     const QString& sensor, double rate)
{
    TiffStackConversionConfig config;
    config.sourcePath = source;
    config.destination = ConversionDestination{file, device, sensor, 0};
    config.frameRate = rate;
    return config;
}

TEST(TiffStackConverter, ConvertsMultiPage16BitStackBitForBitIntoNewFile)
{
    if (!test::haveTool(QStringLiteral("tiffcp")))
        GTEST_SKIP() << "tiffcp is not installed";
    test::TempDir dir;
    const QString stack = dir.file(QStringLiteral("stack.tif"));
    ASSERT_TRUE(test::writeStackWithTiffcp(dir, stack, Width, Height, 5));
    const QString file = dir.file(QStringLiteral("new.orvel"));

    const ConversionResult result = TiffStackConverter::convert(
        tiffConfig(stack, file, QStringLiteral("Miniscope"), QStringLiteral("Cells"), 20.0));
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    const QString group = QStringLiteral("DataConverted/Miniscope/Images/Series1/Cells");
    EXPECT_EQ(result.datapaths, (QStringList{group + "/ImageStack", group + "/Time"}));

    const test::StoredDataset images = storedDataset(file, group + "/ImageStack");
    ASSERT_TRUE(images.found);
    EXPECT_EQ(images.dimensions, (std::vector<hsize_t>{Height, Width, 5}));
    EXPECT_EQ(images.maximum, (std::vector<hsize_t>{Height, Width, H5S_UNLIMITED}));
    EXPECT_EQ(images.chunk, (std::vector<hsize_t>{Height, Width, 1}));
    EXPECT_EQ(images.deflate, 0);
    EXPECT_EQ(images.type.elementClass, ElementClass::Integer);
    EXPECT_EQ(images.type.size, 2u);
    EXPECT_FALSE(images.type.isSigned);
    EXPECT_EQ(
        images.attributes,
        (QVariantMap{
            {"BitCount", 16}, {"Format", 28}, {"Height", Height}, {"Width", Width}, {"Username", "Cells"}}));
    for (int k = 0; k < 5; ++k)
        EXPECT_EQ(storedFrame(file, group + "/ImageStack", k), test::testFrame(Width, Height, k))
            << "frame " << k;

    const test::StoredDataset time = storedDataset(file, group + "/Time");
    EXPECT_EQ(time.maximum, std::vector<hsize_t>{H5S_UNLIMITED});
    EXPECT_EQ(time.chunk, std::vector<hsize_t>{5});
    EXPECT_EQ(time.attributes.value("Unit").toString(), QStringLiteral("s"));
    EXPECT_EQ(storedValues(file, group + "/Time"), (std::vector<double>{0.0, 0.05, 0.1, 0.15, 0.2}));

    const QVariantMap root = test::rootAttributes(file);
    EXPECT_EQ(root.value(FD::SoftwareName).toString(), QStringLiteral("zarvi"));
    EXPECT_EQ(root.value(FD::SoftwareVersion).toString(), QStringLiteral("2.0.8.1"));
    EXPECT_TRUE(QDateTime::fromString(root.value(FD::Created).toString()).isValid());
    test::expectEditedStamp(file);
}

TEST(TiffStackConverter, ConvertsFolderOf8BitPagesIntoExistingFileWithTimestampsAndNextSeries)
{
    test::TempDir dir;
    const QString folder = dir.file(QStringLiteral("pages"));
    ASSERT_TRUE(QDir().mkpath(folder));
    // Written out of order; natural name order is img1, img2, img10.
    const QStringList names{QStringLiteral("img10.tif"), QStringLiteral("img1.tif"),
                            QStringLiteral("img2.tif")};
    const std::vector<int> frameOf{2, 0, 1};
    for (int i = 0; i < 3; ++i) {
        const std::vector<std::uint16_t> frame = test::testFrame(Width, Height, frameOf[i], 8);
        const std::vector<std::uint8_t> bytes(frame.begin(), frame.end());
        ASSERT_TRUE(
            test::writeTiffPage(folder + "/" + names[i], test::PageLayout{Width, Height, 8}, bytes.data()));
    }
    const QString stamps = dir.file(QStringLiteral("stamps.csv"));
    test::writeText(stamps, "seconds\r\n0.0\r\n0.0331\r\n0.0702\r\n");

    // An existing data file from the acquisition, with a series of its own.
    const QString file = dir.file(QStringLiteral("existing.orvel"));
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.create(file), 0);
        writer.closeGroup(
            writer.createGroupPath(writer.fileId(), QStringLiteral("DataConverted/Scope/Images/Series3")));
    }
    const QVariant created = test::rootAttributes(file).value(FD::Created);

    TiffStackConversionConfig config =
        tiffConfig(folder, file, QStringLiteral("Scope"), QStringLiteral("Green"), 0.0);
    config.timestampsPath = stamps;
    ConversionResult result = TiffStackConverter::convert(config);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    const QString group = QStringLiteral("DataConverted/Scope/Images/Series4/Green");
    EXPECT_EQ(result.datapaths.first(), group + "/ImageStack");
    EXPECT_EQ(storedDataset(file, group + "/ImageStack").attributes.value("BitCount").toInt(), 8);
    for (int k = 0; k < 3; ++k)
        EXPECT_EQ(storedFrame(file, group + "/ImageStack", k), test::testFrame(Width, Height, k, 8))
            << "frame " << k;
    EXPECT_EQ(storedValues(file, group + "/Time"), (std::vector<double>{0.0, 0.0331, 0.0702}));
    EXPECT_EQ(test::rootAttributes(file).value(FD::Created), created);
    test::expectEditedStamp(file);

    // The next conversion takes the next series; a named series is used as given.
    config.destination.sensor = QStringLiteral("Red");
    EXPECT_EQ(TiffStackConverter::convert(config).datapaths.first(),
              QStringLiteral("DataConverted/Scope/Images/Series5/Red/ImageStack"));
    config.destination.series = 4;
    ASSERT_TRUE(TiffStackConverter::convert(config).ok());
    EXPECT_TRUE(test::pathExists(file, QStringLiteral("DataConverted/Scope/Images/Series4/Red/ImageStack")));
    result = TiffStackConverter::convert(config);
    EXPECT_EQ(result.error,
              QStringLiteral("<b>DataConverted/Scope/Images/Series4/Red</b> already exists in <b>%1</b>; "
                             "choose another series or sensor name.")
                  .arg(file));

    // Timestamps that do not match the frames are refused before the file is touched.
    test::writeText(stamps, "0\n1\n");
    config.destination.series = 0;
    result = TiffStackConverter::convert(config);
    EXPECT_EQ(result.error,
              QStringLiteral("<b>%1</b> holds 2 timestamps, but the stack has 3 frames.").arg(stamps));
    EXPECT_FALSE(test::pathExists(file, QStringLiteral("DataConverted/Scope/Images/Series6")));
}

TEST(TiffStackConverter, RefusesBadStacksAndNamesWithoutWritingAnything)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("never.orvel"));
    const QString rgb = dir.file(QStringLiteral("rgb.tif"));
    const std::vector<std::uint8_t> pixels(static_cast<std::size_t>(Width) * Height * 3, 7);
    ASSERT_TRUE(
        test::writeTiffPage(rgb, test::PageLayout{Width, Height, 8, 3, PHOTOMETRIC_RGB}, pixels.data()));
    ConversionResult result =
        TiffStackConverter::convert(tiffConfig(rgb, file, QStringLiteral("Cam"), QStringLiteral("A"), 10.0));
    EXPECT_TRUE(
        result.error.contains(QStringLiteral("is an RGB image; only greyscale stacks can be converted.")))
        << result.error.toStdString();

    const QString folder = dir.file(QStringLiteral("mixed"));
    ASSERT_TRUE(QDir().mkpath(folder));
    ASSERT_TRUE(test::writeGreyPage(folder + "/a1.tif", Width, Height, 0));
    ASSERT_TRUE(test::writeGreyPage(folder + "/a2.tif", Width + 1, Height, 1));
    result = TiffStackConverter::convert(
        tiffConfig(folder, file, QStringLiteral("Cam"), QStringLiteral("A"), 10.0));
    EXPECT_TRUE(result.error.contains(QStringLiteral("all frames of a stack must have the same size")))
        << result.error.toStdString();

    const QString good = dir.file(QStringLiteral("good.tif"));
    ASSERT_TRUE(test::writeGreyPage(good, Width, Height, 0));
    result = TiffStackConverter::convert(
        tiffConfig(good, file, QStringLiteral("MySeriesA"), QStringLiteral("A"), 10.0));
    EXPECT_EQ(result.error,
              QStringLiteral("The device name <b>MySeriesA</b> cannot be used: a name must not be empty, "
                             "hold \"/\" or \"\\\", be a reserved name of the data file or contain "
                             "\"Series\"."));
    result = TiffStackConverter::convert(
        tiffConfig(good, file, QStringLiteral("Cam"), QStringLiteral("a/b"), 10.0));
    EXPECT_TRUE(result.error.startsWith(QStringLiteral("The sensor name <b>a/b</b> cannot be used")));
    result =
        TiffStackConverter::convert(tiffConfig(good, file, QStringLiteral("Cam"), QStringLiteral("A"), 0.0));
    EXPECT_EQ(result.error, QStringLiteral("Enter a frame rate above 0 Hz, or choose a timestamps file."));
    EXPECT_FALSE(QFileInfo::exists(file));
}

TEST(TiffStackConverter, CancelledConversionLeavesNoDatasetAndNoNewFile)
{
    test::TempDir dir;
    const QString stack = dir.file(QStringLiteral("long.tif"));
    {
        TiffStackWriter writer;
        ASSERT_TRUE(writer.open(TiffStackWriterConfig{stack, Width, Height, 16, 40}));
        for (int k = 0; k < 40; ++k)
            ASSERT_TRUE(writer.writeFrame(test::testFrame(Width, Height, k)));
        ASSERT_TRUE(writer.finish());
    }
    const QString fresh = dir.file(QStringLiteral("fresh.orvel"));
    test::RecordingFeedback cancelHalfway(50);
    ConversionResult result = TiffStackConverter::convert(
        tiffConfig(stack, fresh, QStringLiteral("Cam"), QStringLiteral("A"), 10.0), &cancelHalfway);
    EXPECT_TRUE(result.canceled);
    EXPECT_TRUE(result.datapaths.isEmpty());
    EXPECT_FALSE(QFileInfo::exists(fresh));

    const QString existing = dir.file(QStringLiteral("existing.orvel"));
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.create(existing), 0);
        writer.closeGroup(writer.createGroupPath(writer.fileId(), QStringLiteral("DataAcquisition/Rig")));
    }
    test::RecordingFeedback cancelLater(80);
    result = TiffStackConverter::convert(
        tiffConfig(stack, existing, QStringLiteral("Cam"), QStringLiteral("A"), 10.0), &cancelLater);
    EXPECT_TRUE(result.canceled);
    EXPECT_FALSE(test::pathExists(existing, FD::DataConverted));
    EXPECT_TRUE(test::pathExists(existing, QStringLiteral("DataAcquisition/Rig")));
    EXPECT_FALSE(test::rootAttributes(existing).contains(FD::Edited));
}

} // namespace
} // namespace zarvi
