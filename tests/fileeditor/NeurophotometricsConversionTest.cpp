#include "ConvertTestSupport.h"
#include "RecordingTestFiles.h"

#include <QFileInfo>

#include "fileeditor/FileConversion.h"
#include "fileeditor/RecordingImport.h"

namespace zarvi {
namespace {

const QString Signals = QStringLiteral("DataConverted/Neurophotometrics/Signals/Series1/");
const QString Events = QStringLiteral("DataConverted/Neurophotometrics/Events/Series1/");

RecordingConversionConfig configFor(const QString& source, const QString& file)
{
    RecordingConversionConfig config;
    config.sourcePath = source;
    config.destination = ConversionDestination{file, QStringLiteral("Neurophotometrics"), QString(), 0};
    return config;
}

/// A frame with no LED, then 415 nm and 470 nm frames taking turns every 25 ms from
/// timestamp 1000; region 0 reads 100 + frame, region 1 reads 200 + frame.
QByteArray photometryCsv(const char* stateColumn, int state415, int state470)
{
    QByteArray csv =
        QByteArray("FrameCounter,SystemTimestamp,") + stateColumn + ",ComputerTimestamp,Region0G,Region1G\n";
    csv += "0,1000,0,5,0,0\n";
    for (int frame = 1; frame <= 6; ++frame) {
        const double time = 1000 + 0.025 * frame;
        const int state = frame % 2 == 1 ? state415 : state470;
        csv += QStringLiteral("%1,%2,%3,%4,%5,%6\n")
                   .arg(frame)
                   .arg(time, 0, 'g', 17)
                   .arg(state)
                   .arg(5 + frame)
                   .arg(100 + frame)
                   .arg(200 + frame)
                   .toUtf8();
    }
    return csv;
}

TEST(NeurophotometricsConversion, DeinterleavesEachLedIntoItsOwnSignalsWithTheirTimes)
{
    test::TempDir dir;
    const QString csv = dir.file(QStringLiteral("photometry.csv"));
    ASSERT_TRUE(test::writeBytes(csv, photometryCsv("LedState", 1, 2)));
    const QString inputs = dir.file(QStringLiteral("inputs.csv"));
    ASSERT_TRUE(test::writeBytes(inputs, "Timestamp,Input0,Input1\n"
                                         "1000.1,False,False\n"
                                         "1000.3,True,False\n"
                                         "1000.5,False,True\n"
                                         "1000.7,False,False\n"));
    const QString file = dir.file(QStringLiteral("out.orvel"));
    RecordingConversionConfig config = configFor(csv, file);
    config.digitalInputsPath = inputs;

    const ConversionResult result = FileConversion::run(config);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(result.datapaths, (QStringList{Signals + "Region0G-415/Signal", Signals + "Region1G-415/Signal",
                                             Signals + "Region0G-470/Signal", Signals + "Region1G-470/Signal",
                                             Events + "DIO1", Events + "DIO2"}));
    const auto timeOf = [](int frame) { return (1000 + 0.025 * frame) - 1000.0; };
    EXPECT_EQ(test::storedValues(file, Signals + "Region0G-415/Signal"),
              (std::vector<double>{101, 103, 105}));
    EXPECT_EQ(test::storedValues(file, Signals + "Region1G-415/Signal"),
              (std::vector<double>{201, 203, 205}));
    EXPECT_EQ(test::storedValues(file, Signals + "Region0G-470/Signal"),
              (std::vector<double>{102, 104, 106}));
    EXPECT_EQ(test::storedValues(file, Signals + "Region0G-415/Time"),
              (std::vector<double>{timeOf(1), timeOf(3), timeOf(5)}));
    EXPECT_EQ(test::storedValues(file, Signals + "Region1G-415/Time"),
              (std::vector<double>{timeOf(1), timeOf(3), timeOf(5)}));
    EXPECT_EQ(test::storedValues(file, Signals + "Region1G-470/Time"),
              (std::vector<double>{timeOf(2), timeOf(4), timeOf(6)}));
    // The regions of one LED are read on the same frames and share one Time; the LEDs do not.
    const test::StoredObject time415 = test::storedObject(file, Signals + "Region0G-415/Time");
    const test::StoredObject time470 = test::storedObject(file, Signals + "Region0G-470/Time");
    EXPECT_EQ(time415.names, 2u);
    EXPECT_EQ(time470.names, 2u);
    EXPECT_NE(time415.place, time470.place);
    EXPECT_EQ(test::storedObject(file, Signals + "Region1G-415/Time").place, time415.place);
    EXPECT_EQ(test::storedObject(file, Signals + "Region1G-470/Time").place, time470.place);
    EXPECT_EQ(test::storedDataset(file, Signals + "Region0G-470/Signal").attributes.value("TimeOrigin(s)"),
              QVariant(1000.0));

    EXPECT_EQ(test::storedValues(file, Events + "DIO1"), (std::vector<double>{1000.3 - 1000, 1000.5 - 1000}));
    EXPECT_EQ(test::storedValues(file, Events + "DIO2"), (std::vector<double>{1000.5 - 1000, 1000.7 - 1000}));
    EXPECT_EQ(test::storedDataset(file, Events + "DIO1").attributes.value("Username").toString(),
              QStringLiteral("Input0"));
    test::expectEditedStamp(file);
}

TEST(NeurophotometricsConversion, OlderFilesCarryTheLedsInTheFlags)
{
    test::TempDir dir;
    const QString csv = dir.file(QStringLiteral("old.csv"));
    ASSERT_TRUE(test::writeBytes(csv, photometryCsv("Flags", 17, 18)));
    const RecordingSummary summary = RecordingImport::describe(configFor(csv, QString()));
    ASSERT_TRUE(summary.ok()) << summary.error.toStdString();
    EXPECT_EQ(summary.format, QStringLiteral("Neurophotometrics"));
    ASSERT_EQ(summary.channels.size(), 4u);
    EXPECT_EQ(summary.channels[0].name, QStringLiteral("Region0G-415"));
    EXPECT_EQ(summary.channels[2].name, QStringLiteral("Region0G-470"));
    EXPECT_EQ(summary.channels[0].samples, 3u);
    // n / (t[n-1] - t[0]) over one LED's frames, 50 ms apart.
    EXPECT_NEAR(summary.channels[0].sampleRate, 3 / 0.1, 1e-6);
}

TEST(NeurophotometricsConversion, ReadsRowsAcrossTheReadBlocksWithWindowsLineEnds)
{
    // Rows of about 25 bytes: 100000 of them span three of the reader's blocks of 1 MiB, so
    // rows are cut at block ends. Windows line ends, spaces around cells, no line end after
    // the last row.
    constexpr int Frames = 100000;
    QByteArray csv = "FrameCounter, Timestamp ,LedState,Region0G\r\n";
    for (int frame = 0; frame < Frames; ++frame) {
        csv += QStringLiteral("%1, %2,%3, %4")
                   .arg(frame)
                   .arg(frame * 0.5)
                   .arg(frame % 2 ? 2 : 1)
                   .arg(frame * 3)
                   .toUtf8();
        if (frame + 1 < Frames)
            csv += "\r\n";
    }
    ASSERT_GT(csv.size(), 2 << 20);
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("long.csv"));
    ASSERT_TRUE(test::writeBytes(path, csv));
    const QString file = dir.file(QStringLiteral("out.orvel"));

    const ConversionResult result = FileConversion::run(configFor(path, file));
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    // Even frames are the 415 nm ones: frame 2k at 0.5 * 2k s reads 3 * 2k; odd frames 470 nm.
    std::vector<double> values415, times415, values470, times470;
    for (int frame = 0; frame < Frames; ++frame) {
        (frame % 2 ? values470 : values415).push_back(3.0 * frame);
        (frame % 2 ? times470 : times415).push_back(0.5 * frame);
    }
    EXPECT_EQ(test::storedValues(file, Signals + "Region0G-415/Signal"), values415);
    EXPECT_EQ(test::storedValues(file, Signals + "Region0G-415/Time"), times415);
    EXPECT_EQ(test::storedValues(file, Signals + "Region0G-470/Signal"), values470);
    EXPECT_EQ(test::storedValues(file, Signals + "Region0G-470/Time"), times470);
}

TEST(NeurophotometricsConversion, DamagedFilesLeaveNothing)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("out.orvel"));
    const auto refused = [&](const QByteArray& bytes, const QString& expected) {
        const QString csv = dir.file(QStringLiteral("bad.csv"));
        EXPECT_TRUE(test::writeBytes(csv, bytes));
        const ConversionResult result = RecordingImport::convert(configFor(csv, file));
        EXPECT_TRUE(result.error.contains(expected)) << result.error.toStdString();
        EXPECT_FALSE(QFileInfo::exists(file));
    };
    QByteArray truncated = photometryCsv("LedState", 1, 2);
    truncated.chop(6);
    refused(truncated, QStringLiteral("bad.csv</b>: Line 8 has 5 columns, expected 6."));
    QByteArray notNumber = photometryCsv("LedState", 1, 2);
    notNumber.replace("105", "x05");
    refused(notNumber, QStringLiteral("column 5: 'x05' is not a number"));
    refused("FrameCounter,Timestamp,LedState\n0,1,1\n",
            QStringLiteral("is not a recording this program reads"));

    const QString csv = dir.file(QStringLiteral("good.csv"));
    ASSERT_TRUE(test::writeBytes(csv, photometryCsv("LedState", 1, 2)));
    RecordingConversionConfig config = configFor(csv, file);
    config.digitalInputsPath = dir.file(QStringLiteral("inputs.csv"));
    ASSERT_TRUE(test::writeBytes(config.digitalInputsPath, "Input0,Input1\n1,0\n"));
    const ConversionResult result = RecordingImport::convert(config);
    EXPECT_TRUE(result.error.contains(QStringLiteral("must hold a header with a timestamp column")))
        << result.error.toStdString();
    EXPECT_FALSE(QFileInfo::exists(file));

    // Into a file that exists: regions 2 and 3 go into its Series1 beside regions 0 and 1,
    // and a bad cell after their shared Times were linked takes them all away again.
    ASSERT_TRUE(RecordingImport::convert(configFor(csv, file)).ok());
    const QStringList before = test::allPaths(file);
    QByteArray more = photometryCsv("LedState", 1, 2).replace("Region0G,Region1G", "Region2G,Region3G");
    more.replace("205", "2x5");
    const QString moreCsv = dir.file(QStringLiteral("more.csv"));
    ASSERT_TRUE(test::writeBytes(moreCsv, more));
    RecordingConversionConfig into = configFor(moreCsv, file);
    into.destination.series = 1;
    const ConversionResult late = RecordingImport::convert(into);
    EXPECT_TRUE(late.error.contains(QStringLiteral("'2x5' is not a number"))) << late.error.toStdString();
    EXPECT_EQ(test::allPaths(file), before);
    EXPECT_EQ(test::storedObject(file, Signals + "Region1G-415/Time").names, 2u);
}

} // namespace
} // namespace zarvi
