#include "ConvertTestSupport.h"

#include "datafile/HDF5Writer_V6.h"
#include "datafile/ImageFrameWriter.h"
#include "datafile/SignalDataset.h"
#include "fileeditor/CsvTableReader.h"
#include "fileeditor/DataExporter.h"
#include "fileeditor/TiffStackReader.h"

#include <sys/stat.h>

namespace zarvi {
namespace {

using FD = FileDefinitions;

constexpr int Width = 19;
constexpr int Height = 11;
constexpr int Frames = 6;

const QString greenPath = QStringLiteral("DataAcquisition/Rig/Signals/Series1/Green/Signal");
const QString redPath = QStringLiteral("DataAcquisition/Rig/Signals/Series1/Red/Signal");
const QString slowPath = QStringLiteral("DataAcquisition/Rig/Signals/Series2/Slow/Signal");
const QString eventsPath = QStringLiteral("DataAcquisition/Rig/Events/Series1/Stimulus");
const QString matrixPath = QStringLiteral("DataAnalyzed/Rig/Signals/Series1/Perievent1/Green/Trials");
const QString stackPath = QStringLiteral("DataAcquisition/Scope/Images/Series1/Cells/ImageStack");

void writeMatrix(HDF5Writer_V6& file, const QString& group, const QString& name,
                 const std::vector<double>& values, hsize_t rows, hsize_t columns)
{
    const hid_t parent = file.createGroupPath(file.fileId(), group);
    const hid_t dataset = file.createDataset(parent, ElementKind::Float64, name, 2, {rows, columns},
                                             {rows, columns}, {rows, columns}, 0);
    EXPECT_TRUE(file.write(dataset, values.data(), {0, 0}, {rows, columns}));
    file.closeDataset(dataset);
    file.closeGroup(parent);
}

/// A data file with two signals on one clock, one on another, an event array, a
/// perievent-like matrix with its time axis, and an image stack.
QString writeDataFile(const test::TempDir& dir)
{
    const QString path = dir.file(QStringLiteral("data.orvel"));
    HDF5Writer_V6 file;
    EXPECT_GE(file.create(path), 0);
    Signal green{{0.0, 0.1, 0.2, 0.30000000000000004}, {1.0 / 3.0, -2.5e-7, 1e300, 4.0}, QStringLiteral("V")};
    Signal red{green.time, {5.0, 6.0, 7.0, 8.0}, QStringLiteral("mV")};
    Signal slow{{0.0, 1.0}, {1.0, 2.0}, QString()};
    QString error;
    EXPECT_TRUE(SignalDataset::write(file, QStringLiteral("DataAcquisition/Rig/Signals/Series1/Green"), green,
                                     {}, error));
    EXPECT_TRUE(SignalDataset::write(file, QStringLiteral("DataAcquisition/Rig/Signals/Series1/Red"), red, {},
                                     error));
    EXPECT_TRUE(SignalDataset::write(file, QStringLiteral("DataAcquisition/Rig/Signals/Series2/Slow"), slow,
                                     {}, error));
    writeMatrix(file, QStringLiteral("DataAcquisition/Rig/Events/Series1"), QStringLiteral("Stimulus"),
                {1.5, 2.5, 10.25, 12.0}, 2, 2);
    const QString perievent = QStringLiteral("DataAnalyzed/Rig/Signals/Series1/Perievent1/Green");
    writeMatrix(file, perievent, QStringLiteral("Trials"), {1, 2, 3, 4, 5, 6}, 2, 3);
    const hid_t group = file.openGroup(file.fileId(), perievent);
    const hid_t time = file.create1D(group, ElementKind::Float64, FD::Time, 3);
    const double axis[] = {-0.5, 0.0, 0.5};
    EXPECT_TRUE(file.append(time, axis, {3}));
    file.closeDataset(time);
    file.closeGroup(group);

    const hid_t sensor =
        file.createGroupPath(file.fileId(), QStringLiteral("DataAcquisition/Scope/Images/Series1/Cells"));
    ImageStackInfo geometry;
    geometry.height = Height;
    geometry.width = Width;
    ImageFrameWriter stack;
    EXPECT_TRUE(stack.create(file, sensor, geometry, Frames, {}, error)) << error.toStdString();
    for (int k = 0; k < Frames; ++k)
        EXPECT_TRUE(stack.appendRaw(test::testFrame(Width, Height, k).data(), 0.1 * k, error));
    stack.close();
    file.closeGroup(sensor);
    return path;
}

DataExportConfig exportConfig(const QString& file, const QStringList& paths, const QString& output)
{
    DataExportConfig config;
    config.filepath = file;
    config.datapaths = paths;
    config.outputPath = output;
    return config;
}

TEST(DataExporter, ExportsSignalsWithTheirTimeExactly)
{
    test::TempDir dir;
    const QString file = writeDataFile(dir);
    const QString csv = dir.file(QStringLiteral("signals.csv"));
    // A sensor group stands for its signal.
    DataExportResult result = DataExporter::run(
        exportConfig(file, {QStringLiteral("DataAcquisition/Rig/Signals/Series1/Green"), redPath}, csv));
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(result.written, 4u);

    CsvTableReaderConfig read;
    read.path = csv;
    const CsvTable table = CsvTableReader::read(read);
    ASSERT_TRUE(table.ok()) << table.error.toStdString();
    // The header's units read back as the columns' units.
    EXPECT_EQ(table.columnNames, (QStringList{"Time", "Green", "Red"}));
    ASSERT_EQ(table.columns.size(), 2u);
    EXPECT_EQ(table.columns[0].unit, "V");
    EXPECT_EQ(table.columns[1].unit, "mV");
    EXPECT_EQ(table.time,
              test::storedValues(file, QStringLiteral("DataAcquisition/Rig/Signals/Series1/Green/Time")));
    EXPECT_EQ(table.columns[0].values, test::storedValues(file, greenPath));
    EXPECT_EQ(table.columns[1].values, test::storedValues(file, redPath));

    const QString xlsx = dir.file(QStringLiteral("signals.xlsx"));
    result = DataExporter::run(exportConfig(file, {greenPath, redPath}, xlsx));
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_TRUE(test::readText(xlsx).startsWith("PK"));

    const QString refused = dir.file(QStringLiteral("mixed.csv"));
    result = DataExporter::run(exportConfig(file, {greenPath, slowPath}, refused));
    EXPECT_EQ(result.error,
              QStringLiteral("<b>%1</b> and <b>%2</b> do not share their time vectors; signals exported "
                             "together must have the same Time. Export them one at a time.")
                  .arg(greenPath, slowPath));
    result = DataExporter::run(exportConfig(file, {greenPath, eventsPath}, refused));
    EXPECT_EQ(result.error, QStringLiteral("Signals, event arrays, 2-D results and image stacks are exported "
                                           "separately; choose datasets of one kind."));
    result = DataExporter::run(exportConfig(file, {greenPath}, dir.file(QStringLiteral("signal.tif"))));
    EXPECT_TRUE(result.error.startsWith(
        QStringLiteral("Signals, event arrays and 2-D results are exported to .csv")));
    EXPECT_FALSE(QFileInfo::exists(refused));
}

TEST(DataExporter, ExportsEventArraysAndMatricesWithRowNames)
{
    test::TempDir dir;
    const QString file = writeDataFile(dir);
    const QString events = dir.file(QStringLiteral("events.csv"));
    ASSERT_TRUE(DataExporter::run(exportConfig(file, {eventsPath}, events)).ok());
    EXPECT_EQ(test::readText(events), QByteArray("Event,Stimulus Onset (s),Stimulus Offset (s)\n"
                                                 "Event1,1.5,2.5\n"
                                                 "Event2,10.25,12\n"));

    const QString matrix = dir.file(QStringLiteral("trials.csv"));
    ASSERT_TRUE(DataExporter::run(exportConfig(file, {matrixPath}, matrix)).ok());
    EXPECT_EQ(test::readText(matrix), QByteArray("Trials,-0.5 (s),0 (s),0.5 (s)\n"
                                                 "Row1,1,2,3\n"
                                                 "Row2,4,5,6\n"));
}

TEST(DataExporter, ValuesPerFrameBesideAStackAreExportedWithTheFramesTimes)
{
    // As a motion correction keeps its shifts: [frames, 2] beside the stack and its Time.
    test::TempDir dir;
    const QString file = writeDataFile(dir);
    std::vector<double> shifts;
    for (int k = 0; k < Frames; ++k)
        shifts.insert(shifts.end(), {0.5 * k, -1.0 - k});
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(file), 0);
        writeMatrix(writer, QStringLiteral("DataAcquisition/Scope/Images/Series1/Cells"),
                    QStringLiteral("AlignmentShifts"), shifts, Frames, 2);
        const hid_t dataset = writer.openDataset(
            writer.fileId(), QStringLiteral("DataAcquisition/Scope/Images/Series1/Cells/AlignmentShifts"));
        writer.writeAttribute(dataset, QStringLiteral("ColumnNames"),
                              QStringList{QStringLiteral("X Shift"), QStringLiteral("Y Shift")});
        writer.writeAttribute(dataset, FD::Unit, QStringLiteral("px"));
        writer.closeDataset(dataset);
    }
    const QString csv = dir.file(QStringLiteral("shifts.csv"));
    const DataExportResult result = DataExporter::run(exportConfig(
        file, {QStringLiteral("DataAcquisition/Scope/Images/Series1/Cells/AlignmentShifts")}, csv));
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(result.written, 6u);
    EXPECT_EQ(test::readText(csv).toStdString(), std::string("Time (s),X Shift (px),Y Shift (px)\n"
                                                             "0,0,-1\n"
                                                             "0.1,0.5,-2\n"
                                                             "0.2,1,-3\n"
                                                             "0.30000000000000004,1.5,-4\n"
                                                             "0.4,2,-5\n"
                                                             "0.5,2.5,-6\n"));
}

TEST(DataExporter, ExportsFrameRangeOfStackToTiffAndLeavesNothingWhenCancelled)
{
    test::TempDir dir;
    const QString file = writeDataFile(dir);
    const QString tiff = dir.file(QStringLiteral("cells.tif"));
    DataExportConfig config = exportConfig(file, {stackPath}, tiff);
    config.firstFrame = 1;
    config.frameCount = 3;
    DataExportResult result = DataExporter::run(config);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(result.written, 3u);

    TiffStackReader reader;
    const TiffStackInfo info = reader.open(TiffStackReaderConfig{tiff});
    ASSERT_TRUE(info.ok()) << info.error.toStdString();
    EXPECT_EQ(info.width, Width);
    EXPECT_EQ(info.height, Height);
    EXPECT_EQ(info.bitsPerSample, 16);
    ASSERT_EQ(info.frameCount, 3u);
    std::vector<std::uint16_t> frame(info.pixelsPerFrame());
    for (int k = 0; k < 3; ++k) {
        ASSERT_TRUE(reader.readFrame(k, frame));
        EXPECT_EQ(frame, test::testFrame(Width, Height, k + 1)) << "frame " << k;
    }
    reader.close();
    if (test::haveTool(QStringLiteral("tiffinfo"))) {
        const test::ToolRun run = test::runTool(QStringLiteral("tiffinfo"), {tiff});
        EXPECT_EQ(run.output.count("Image Width: 19 Image Length: 11"), 3) << run.output.toStdString();
    }

    // The same frames from a packed stack, which the library unpacks where a plain stack's
    // frames move whole past it, give the same file, byte for byte.
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(file), 0);
        const hid_t group = writer.createGroupPath(
            writer.fileId(), QStringLiteral("DataAcquisition/Scope/Images/Series1/Packed"));
        const hid_t packed = writer.createImageStack(group, FD::ImageStack, Height, Width, 28, 16, 4);
        const hid_t time = writer.create1D(group, ElementKind::Float64, FD::Time, Frames);
        for (int k = 0; k < Frames; ++k) {
            const double at = 0.1 * k;
            ASSERT_TRUE(writer.append(packed, test::testFrame(Width, Height, k).data(), {Height, Width, 1}));
            ASSERT_TRUE(writer.append(time, &at, {1}));
        }
        writer.closeDataset(packed);
        writer.closeDataset(time);
        writer.closeGroup(group);
    }
    DataExportConfig fromPacked = config;
    fromPacked.datapaths = {QStringLiteral("DataAcquisition/Scope/Images/Series1/Packed/ImageStack")};
    fromPacked.outputPath = dir.file(QStringLiteral("packed.tif"));
    ASSERT_TRUE(DataExporter::run(fromPacked).ok());
    EXPECT_EQ(test::readText(fromPacked.outputPath), test::readText(tiff));

    const QByteArray before = test::readText(tiff);
    test::RecordingFeedback cancel(50);
    config.frameCount = 0;
    result = DataExporter::run(config, &cancel);
    EXPECT_TRUE(result.canceled);
    EXPECT_EQ(test::readText(tiff), before);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).filter(QStringLiteral("cells")),
              QStringList{QStringLiteral("cells.tif")});

    config.firstFrame = 4;
    config.frameCount = 3;
    result = DataExporter::run(config);
    EXPECT_EQ(result.error, QStringLiteral("Frames 5 to 7 do not lie within the stack's 6 frames."));
}

TEST(DataExporter, AStackDeclaringMoreFramesThanItStoresIsRefusedAndLeavesNoTemporaryFile)
{
    test::TempDir dir;
    const QString file = writeDataFile(dir);
    {
        // 2^40 frames declared, six stored, and a "Time" declared as long.
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(file), 0);
        const hsize_t frames = hsize_t{1} << 40;
        const hid_t stack = writer.openDataset(writer.fileId(), stackPath);
        const hsize_t stackExtent[] = {Height, Width, frames};
        ASSERT_GE(H5Dset_extent(stack, stackExtent), 0);
        writer.closeDataset(stack);
        const hid_t time =
            writer.openDataset(writer.fileId(), stackPath.section(QLatin1Char('/'), 0, -2) + "/Time");
        ASSERT_GE(H5Dset_extent(time, &frames), 0);
        writer.closeDataset(time);
    }
    const QString tiff = dir.file(QStringLiteral("cells.tif"));
    const DataExportResult result = DataExporter::run(exportConfig(file, {stackPath}, tiff));
    EXPECT_FALSE(result.ok());
    EXPECT_TRUE(result.error.contains(QStringLiteral("declares 11 x 19 x 1099511627776 values")))
        << result.error.toStdString();
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).filter(QStringLiteral("cells")),
              QStringList());
}

TEST(DataExporter, EveryOutputGetsThePermissionsTheUmaskGives)
{
    test::TempDir dir;
    const QString file = writeDataFile(dir);
    // With the umask 027 a new file is created 0666 & ~027 = 0640.
    const mode_t previous = ::umask(027);
    const auto modeOf = [](const QString& path) {
        struct stat status
        {
        };
        EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &status), 0) << path.toStdString();
        return status.st_mode & 0777;
    };
    for (const auto& [name, path] : {std::pair{QStringLiteral("cells.tif"), stackPath},
                                     std::pair{QStringLiteral("green.csv"), greenPath},
                                     std::pair{QStringLiteral("green.xlsx"), greenPath}}) {
        const QString output = dir.file(name);
        const DataExportResult result = DataExporter::run(exportConfig(file, {path}, output));
        EXPECT_TRUE(result.ok()) << result.error.toStdString();
        EXPECT_EQ(modeOf(output), 0640u) << name.toStdString();
    }
    ::umask(previous);
}

TEST(DataExporter, ExportsCoordinatesWithTheirTimeOneSetPerFile)
{
    test::TempDir dir;
    const QString file = writeDataFile(dir);
    const QString group = QStringLiteral("DataBehavior/Camera/Coordinates/Series1/Video1");
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(file), 0);
        const hid_t parent = writer.createGroupPath(writer.fileId(), group);
        const std::int32_t xy[] = {12, 40, -1, -1, 13, 42};
        const hid_t coordinates = writer.createDataset(
            parent, ElementKind::Int32, QStringLiteral("Coordinates1"), 2, {3, 2}, {3, 2}, {3, 2}, 0);
        EXPECT_TRUE(writer.write(coordinates, xy, {0, 0}, {3, 2}));
        writer.closeDataset(coordinates);
        const hid_t time = writer.create1D(parent, ElementKind::Float64, FD::Time, 3);
        const double times[] = {0.2, 0.24, 0.28};
        EXPECT_TRUE(writer.append(time, times, {3}));
        writer.closeDataset(time);
        writer.closeGroup(parent);
    }
    const QString coordinates = group + QStringLiteral("/Coordinates1");
    const QString csv = dir.file(QStringLiteral("track.csv"));
    DataExportResult result = DataExporter::run(exportConfig(file, {coordinates}, csv));
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(result.written, 3u);
    // The frame without a position keeps its marker.
    EXPECT_EQ(test::readText(csv), QByteArray("Time (s),X (px),Y (px)\n0.2,12,40\n0.24,-1,-1\n0.28,13,42\n"));

    result = DataExporter::run(exportConfig(file, {coordinates, coordinates}, dir.file("two.csv")));
    EXPECT_EQ(result.error, QStringLiteral("Coordinates are exported one set per file; choose one."));
}

TEST(DataExporter, ListsWhatCanBeExported)
{
    test::TempDir dir;
    const QString file = writeDataFile(dir);
    QString error;
    const std::vector<ExportableDataset> items = DataExporter::exportableDatasets(file, error);
    ASSERT_TRUE(error.isEmpty()) << error.toStdString();
    QStringList paths;
    std::vector<ExportKind> kinds;
    for (const ExportableDataset& item : items) {
        paths << item.path;
        kinds.push_back(item.kind);
    }
    EXPECT_EQ(paths, (QStringList{eventsPath, greenPath, redPath, slowPath, stackPath, matrixPath}));
    EXPECT_EQ(kinds,
              (std::vector<ExportKind>{ExportKind::Events, ExportKind::Signal, ExportKind::Signal,
                                       ExportKind::Signal, ExportKind::ImageStack, ExportKind::Matrix}));
}

} // namespace
} // namespace zarvi
