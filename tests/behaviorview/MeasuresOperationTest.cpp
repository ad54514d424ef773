// The "Measures" operation end to end on a hand-made recording: a path with three visits
// to a zone and a few lost frames, a signal that rises for 2 s after each visit starts.
// The table and the zone's event array are checked against values worked out from the
// path, the events drive a perievent run with no step between, and the table exports.
#include "BehaviorTestFiles.h"
#include "common/TempDir.h"

#include "datafile/HDF5Reader_V6.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/BehaviorViewDefinitions.h"
#include "fileeditor/DataExporter.h"
#include "framework/OperationRunner.h"

#include <QTextStream>

#include <gtest/gtest.h>

#include <cmath>

using namespace zarvi;

namespace {

using AD = AnalysisOperationDefinitions;
using BD = BehaviorViewDefinitions;
using FD = FileDefinitions;

const QString coordinates = QStringLiteral("DataBehavior/Camera/Coordinates/Series1/Coordinates1");
const QString signalGroup = QStringLiteral("DataAcquisition/FiberPhotometry/Signals/Series1/Biosensor");
const QString tablePath =
    QStringLiteral("DataBehavior/Camera/Measures/Series1/Measures1/Coordinates1/Measures");
const QString eventsGroup = QStringLiteral("DataBehavior/Camera/Events/Series1");
const double entries[] = {10.0, 25.0, 40.0};

struct Dataset
{
    std::vector<double> values;
    std::vector<hsize_t> dimensions;
    QVariantMap attributes;
};

Dataset readDataset(const QString& file, const QString& path)
{
    Dataset d;
    HDF5Reader_V6 reader;
    EXPECT_GE(reader.open(file), 0);
    const hid_t dataset = reader.openDataset(reader.fileId(), path);
    EXPECT_GE(dataset, 0) << path.toStdString();
    if (dataset < 0)
        return d;
    d.dimensions = reader.dimensions(dataset);
    EXPECT_TRUE(reader.read(dataset, d.values));
    d.attributes = reader.readAllAttributes(dataset);
    reader.closeDataset(dataset);
    return d;
}

bool exists(const QString& file, const QString& path)
{
    HDF5Reader_V6 reader;
    EXPECT_GE(reader.open(file), 0);
    return reader.exists(reader.fileId(), path);
}

class MeasuresOperationTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        {
            HDF5Writer_V6 writer;
            ASSERT_GE(writer.create(file), 0);
        }
        // 60 s at 10 frames per second, waiting at (100, 100); three visits of 3 s to
        // (250, 250) in the zone; frames 50-52 lost outside it and frame 260 inside it.
        std::vector<cv::Point> positions(600, cv::Point(100, 100));
        std::vector<double> time(600);
        for (int k = 0; k < 600; ++k) {
            time[k] = k / 10.0;
            for (double entry : entries)
                if (k >= entry * 10 && k < entry * 10 + 30)
                    positions[k] = cv::Point(250, 250);
        }
        for (int k : {50, 51, 52, 260})
            positions[k] = cv::Point(-1, -1);
        test::writeCoordinates(file, coordinates, positions, time);

        Signal signal;
        signal.unit = QStringLiteral("V");
        for (int i = 0; i < 6000; ++i) {
            const double t = i / 100.0;
            signal.time.push_back(t);
            bool after = false;
            for (double entry : entries)
                after = after || (t >= entry && t < entry + 2.0);
            signal.values.push_back(after ? 1.0 : 0.0);
        }
        test::writeSignal(file, signalGroup, signal);
    }

    /// Arena over the whole 640 x 480 frame, Zone1 (200, 200)-(300, 300), 300 px = 30 cm.
    QVariantMap parameters() const
    {
        return {{FD::Operations, BD::MeasuresOperation},
                {BD::ArenaCoordinates, QVariantList{0, 0, 639, 479}},
                {BD::ArenaRoiShape, QStringLiteral("Rectangle")},
                {BD::Zones, QStringLiteral(R"([{"Name": "Zone1", "Shape": "Rectangle",
                                              "Points": [[200, 200], [300, 300]]}])")},
                {BD::CalibrationCoordinates, QVariantList{0, 10, 300, 10}},
                {BD::CalibrationLength, 30.0},
                {BD::TimeBin, 20.0}};
    }

    RunResult run(const QVariantMap& parameters, const QStringList& inputs = {coordinates})
    {
        OperationRunner runner;
        return runner.run(parameters, file, inputs);
    }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("session.orvel"));
};

} // namespace

TEST_F(MeasuresOperationTest, TableAndZoneEventsOfAKnownPath)
{
    const RunResult result = run(parameters());
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(result.datapaths, QStringList({tablePath, eventsGroup + QStringLiteral("/Zone1")}));

    const Dataset table = readDataset(file, tablePath);
    ASSERT_EQ(table.dimensions, (std::vector<hsize_t>{4, 11}));
    EXPECT_EQ(table.attributes.value(AD::RowNames).toStringList(),
              QStringList({"Whole recording", "Bin1", "Bin2", "Bin3"}));
    EXPECT_EQ(
        table.attributes.value(AD::ColumnNames).toStringList(),
        QStringList({"Start", "End", "Distance", "MeanSpeed", "TrackedTime", "Arena Time", "Arena Fraction",
                     "Arena Entries", "Zone1 Time", "Zone1 Fraction", "Zone1 Entries"}));
    EXPECT_EQ(table.attributes.value(AD::ColumnUnits).toStringList(),
              QStringList({"s", "s", "cm", "cm/s", "s", "s", "", "", "s", "", ""}));
    EXPECT_EQ(table.attributes.value(FD::SourceDatapath).toString(), coordinates);
    EXPECT_EQ(table.attributes.value(FD::Operations).toString(), BD::MeasuresOperation);
    auto cell = [&](int row, int column) {
        return table.values[static_cast<std::size_t>(row * 11 + column)];
    };

    // Six jumps of 150√2 px between (100, 100) and (250, 250), at 10 px/cm; 596 frames
    // tracked, 593 steps between two tracked frames; 89 frames in the zone.
    const double distance = 6 * 15.0 * std::sqrt(2.0);
    EXPECT_NEAR(cell(0, 0), 0.0, 1e-9);
    EXPECT_NEAR(cell(0, 1), 60.0, 1e-9);
    EXPECT_NEAR(cell(0, 2), distance, 1e-9);
    EXPECT_NEAR(cell(0, 3), distance / 59.3, 1e-9);
    EXPECT_NEAR(cell(0, 4), 59.6, 1e-9);
    EXPECT_NEAR(cell(0, 5), 59.6, 1e-9);
    EXPECT_NEAR(cell(0, 6), 1.0, 1e-12);
    EXPECT_EQ(cell(0, 7), 1.0); // the lost frames do not end the stay in the arena
    EXPECT_NEAR(cell(0, 8), 8.9, 1e-9);
    EXPECT_NEAR(cell(0, 9), 8.9 / 59.6, 1e-12);
    EXPECT_EQ(cell(0, 10), 3.0);
    // One visit and two jumps in each 20 s bin; the lost frame 260 falls in the second.
    const double zoneTime[] = {3.0, 2.9, 3.0};
    for (int b = 1; b <= 3; ++b) {
        SCOPED_TRACE(b);
        EXPECT_NEAR(cell(b, 0), 20.0 * (b - 1), 1e-9);
        EXPECT_NEAR(cell(b, 2), distance / 3.0, 1e-9);
        EXPECT_NEAR(cell(b, 8), zoneTime[b - 1], 1e-9);
        EXPECT_EQ(cell(b, 10), 1.0);
    }

    // Each visit runs from its first frame in the zone to the end of its last: the lost
    // frame 260 does not split the second one.
    const Dataset events = readDataset(file, eventsGroup + QStringLiteral("/Zone1"));
    ASSERT_EQ(events.dimensions, (std::vector<hsize_t>{3, 2}));
    for (int v = 0; v < 3; ++v) {
        EXPECT_NEAR(events.values[2 * v], entries[v], 1e-9);
        EXPECT_NEAR(events.values[2 * v + 1], entries[v] + 3.0, 1e-9);
    }
    EXPECT_EQ(events.attributes.value(FD::Unit).toString(), QStringLiteral("s"));
    EXPECT_EQ(events.attributes.value(FD::Username).toString(), QStringLiteral("Zone1"));

    // A second run writes beside the first, its zone's array under a free name.
    const RunResult again = run(parameters());
    ASSERT_TRUE(again.succeeded()) << again.errors.join(' ').toStdString();
    EXPECT_EQ(again.datapaths,
              QStringList({QString(tablePath).replace("Measures1", "Measures2"), eventsGroup + "/Zone1_2"}));
}

TEST_F(MeasuresOperationTest, PerieventAlignsTheSignalToZoneEntries)
{
    ASSERT_TRUE(run(parameters()).succeeded());
    const QVariantMap perievents{{FD::Operations, AD::Perievents},
                                 {AD::EventPath, eventsGroup},
                                 {AD::Event, QStringLiteral("Zone1")},
                                 {AD::PerieventTimeFrame, QVariantList{-2.0, 4.0}}};
    const RunResult aligned = run(perievents, {signalGroup + QStringLiteral("/Signal")});
    ASSERT_TRUE(aligned.succeeded()) << aligned.errors.join(' ').toStdString();
    ASSERT_EQ(aligned.datapaths.size(), 1);
    const Dataset matrix = readDataset(file, aligned.datapaths[0]);
    const Dataset time =
        readDataset(file, aligned.datapaths[0].section('/', 0, -2) + QStringLiteral("/Time"));
    ASSERT_EQ(matrix.dimensions.size(), 2u);
    ASSERT_EQ(matrix.dimensions[0], 3u);
    ASSERT_EQ(time.values.size(), matrix.dimensions[1]);
    // The signal is 1 for the 2 s after every entry and 0 elsewhere, on every trial.
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t c = 0; c < time.values.size(); ++c) {
            const double t = time.values[c];
            if (std::abs(t) < 0.05 || std::abs(t - 2.0) < 0.05)
                continue; // the edges fall between samples
            ASSERT_EQ(matrix.values[row * time.values.size() + c], t > 0.0 && t < 2.0 ? 1.0 : 0.0)
                << "trial " << row << " at " << t << " s";
        }
}

TEST_F(MeasuresOperationTest, TheTableExportsWithAUnitPerColumn)
{
    ASSERT_TRUE(run(parameters()).succeeded());
    const QString csv = dir.file(QStringLiteral("measures.csv"));
    const DataExportResult exported = DataExporter::run({file, {tablePath}, csv});
    ASSERT_TRUE(exported.ok()) << exported.error.toStdString();
    QFile text(csv);
    ASSERT_TRUE(text.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(text.readAll()).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 5);
    EXPECT_EQ(lines[0],
              QStringLiteral("Measures,Start (s),End (s),Distance (cm),MeanSpeed (cm/s),TrackedTime (s),"
                             "Arena Time (s),Arena Fraction,Arena Entries,Zone1 Time (s),"
                             "Zone1 Fraction,Zone1 Entries"));
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("Whole recording,0,60,")));
    EXPECT_TRUE(lines[1].endsWith(QStringLiteral(",3")));

    const QString eventsCsv = dir.file(QStringLiteral("zone1.csv"));
    ASSERT_TRUE(DataExporter::run({file, {eventsGroup + QStringLiteral("/Zone1")}, eventsCsv}).ok());
    QFile eventsText(eventsCsv);
    ASSERT_TRUE(eventsText.open(QIODevice::ReadOnly));
    EXPECT_TRUE(eventsText.readAll().startsWith("Event,Zone1 Onset (s),Zone1 Offset (s)\nEvent1,10,13"));
}

TEST_F(MeasuresOperationTest, BadInputIsRefusedAndWritesNothing)
{
    QVariantMap noArena = parameters();
    noArena.remove(BD::ArenaCoordinates);
    noArena.remove(BD::ArenaRoiShape);
    RunResult result = run(noArena);
    EXPECT_EQ(result.errors, QStringList{BD::arenaMissingMessage()});

    QVariantMap zeroBin = parameters();
    zeroBin.insert(BD::TimeBin, 0.0);
    EXPECT_EQ(run(zeroBin).errors, QStringList{BD::badTimeBinMessage()});
    // A bin of 1e-300 s would make 10^300 bins: refused before the count is an integer.
    zeroBin.insert(BD::TimeBin, 1e-300);
    EXPECT_EQ(run(zeroBin).errors,
              QStringList{QStringLiteral("The time bin of <b>1e-300 s</b> cuts the recording into more than "
                                         "<b>1000000</b> bins.")});

    // Frames out of time order: refused after the first input was measured, so its
    // outputs are taken back too.
    const QString shuffled = QStringLiteral("DataBehavior/Camera/Coordinates/Series1/Other/Coordinates2");
    test::writeCoordinates(file, shuffled, {{1, 1}, {2, 2}, {3, 3}}, {0.0, 0.2, 0.1});
    result = run(parameters(), {coordinates, shuffled});
    EXPECT_EQ(result.errors, QStringList{BD::timeNotIncreasingMessage().arg(shuffled).arg(2)});

    const QString notCoordinates = signalGroup + QStringLiteral("/Signal");
    result = run(parameters(), {notCoordinates});
    EXPECT_EQ(result.errors, QStringList{BD::notCoordinatesMessage().arg(notCoordinates)});

    EXPECT_FALSE(exists(file, QStringLiteral("DataBehavior/Camera/Measures")));
    EXPECT_FALSE(exists(file, QStringLiteral("DataBehavior/Camera/Events")));
}
