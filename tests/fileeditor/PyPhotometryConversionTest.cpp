#include "ConvertTestSupport.h"
#include "RecordingTestFiles.h"

#include <QFileInfo>

#include <algorithm>

#include "fileeditor/FileCompaction.h"
#include "fileeditor/FileConversion.h"
#include "fileeditor/RecordingImport.h"

namespace zarvi {
namespace {

const QString Signals = QStringLiteral("DataConverted/pyPhotometry/Signals/Series1/");
const QString Events = QStringLiteral("DataConverted/pyPhotometry/Events/Series1/");

RecordingConversionConfig configFor(const QString& source, const QString& file)
{
    RecordingConversionConfig config;
    config.sourcePath = source;
    config.destination = ConversionDestination{file, QStringLiteral("pyPhotometry"), QString(), 0};
    return config;
}

/// 300 samples at 50 Hz: a ramp on channel 1, a count on channel 2; digital line 1 high
/// for samples 40-59 and from 250 to the end, line 2 high for the first 10 samples.
struct ContinuousRecording
{
    std::vector<std::vector<int>> readings{std::vector<int>(300), std::vector<int>(300)};
    std::vector<std::vector<int>> bits{std::vector<int>(300), std::vector<int>(300)};

    ContinuousRecording()
    {
        for (int k = 0; k < 300; ++k) {
            readings[0][k] = (k * 97) % 32768;
            readings[1][k] = 1000 + k;
            bits[0][k] = (k >= 40 && k < 60) || k >= 250;
            bits[1][k] = k < 10;
        }
    }
    QByteArray bytes() const
    {
        return test::ppdBytes(50.0, "2 colour continuous", {1e-4, 2e-4}, readings, bits);
    }
};

TEST(PyPhotometryConversion, EverySampleAndEveryEdgeLandsAtItsTime)
{
    test::TempDir dir;
    const QString ppd = dir.file(QStringLiteral("mouse1.ppd"));
    const ContinuousRecording recording;
    ASSERT_TRUE(test::writeBytes(ppd, recording.bytes()));
    const QString file = dir.file(QStringLiteral("out.orvel"));

    const ConversionResult result = FileConversion::run(configFor(ppd, file));
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(result.datapaths, (QStringList{Signals + "AIN1/Signal", Signals + "AIN2/Signal",
                                             Events + "DIO1", Events + "DIO2"}));
    const double volts[] = {1e-4, 2e-4};
    for (int c = 0; c < 2; ++c) {
        const QString group = Signals + QStringLiteral("AIN%1/").arg(c + 1);
        const std::vector<double> values = test::storedValues(file, group + "Signal");
        const std::vector<double> time = test::storedValues(file, group + "Time");
        ASSERT_EQ(values.size(), 300u);
        ASSERT_EQ(time.size(), 300u);
        for (int k = 0; k < 300; ++k) {
            EXPECT_DOUBLE_EQ(values[k], recording.readings[c][k] * volts[c]);
            EXPECT_DOUBLE_EQ(time[k], k / 50.0);
        }
        const QVariantMap attributes = test::storedDataset(file, group + "Signal").attributes;
        EXPECT_EQ(attributes.value("Unit").toString(), QStringLiteral("V"));
    }
    // Read together, the channels keep one Time under two names.
    const test::StoredObject time1 = test::storedObject(file, Signals + "AIN1/Time");
    EXPECT_EQ(time1.names, 2u);
    EXPECT_EQ(test::storedObject(file, Signals + "AIN2/Time").place, time1.place);
    EXPECT_EQ(test::storedDataset(file, Signals + "AIN2/Time").attributes.value("Unit").toString(),
              QStringLiteral("s"));
    // Edges by hand: a pulse high at the end closes at the last sample, one high at the
    // start opens at the first.
    EXPECT_EQ(test::storedDataset(file, Events + "DIO1").dimensions, (std::vector<hsize_t>{2, 2}));
    EXPECT_EQ(test::storedValues(file, Events + "DIO1"),
              (std::vector<double>{40 / 50.0, 60 / 50.0, 250 / 50.0, 299 / 50.0}));
    EXPECT_EQ(test::storedValues(file, Events + "DIO2"), (std::vector<double>{0.0, 10 / 50.0}));

    // The digital lines are sampled with the analog channels, so every edge is a sample time.
    for (int c = 0; c < 2; ++c) {
        const std::vector<double> time =
            test::storedValues(file, Signals + QStringLiteral("AIN%1/Time").arg(c + 1));
        for (const double edge : test::storedValues(file, Events + QStringLiteral("DIO%1").arg(c + 1)))
            EXPECT_TRUE(std::find(time.begin(), time.end(), edge) != time.end()) << edge;
    }

    const QVariantMap group = test::rootAttributes(file);
    EXPECT_EQ(group.value("SoftwareName").toString(), QStringLiteral("zarvi"));
    test::expectEditedStamp(file);
    const QVariantMap events = test::storedDataset(file, Events + "DIO1").attributes;
    EXPECT_EQ(events.value("SourceFile").toString(), QStringLiteral("mouse1.ppd"));
    EXPECT_EQ(events.value("SourceFilepath").toString(), QFileInfo(ppd).absoluteFilePath());
    EXPECT_EQ(events.value("Format").toString(), QStringLiteral("pyPhotometry"));
    EXPECT_EQ(events.value("SampleRate").toDouble(), 50.0);
    EXPECT_EQ(events.value("AcquisitionMode").toString(), QStringLiteral("2 colour continuous"));
}

TEST(PyPhotometryConversion, TimeDivisionReadsTheChannelsOneAfterAnother)
{
    test::TempDir dir;
    const QString ppd = dir.file(QStringLiteral("td.ppd"));
    std::vector<std::vector<int>> readings{{1, 2, 3, 4}, {10, 20, 30, 40}};
    std::vector<std::vector<int>> bits{{0, 1, 1, 0}, {0, 0, 1, 1}};
    ASSERT_TRUE(
        test::writeBytes(ppd, test::ppdBytes(100.0, "2 colour time div", {0.5, 0.25}, readings, bits)));
    const QString file = dir.file(QStringLiteral("out.orvel"));
    const ConversionResult result = FileConversion::run(configFor(ppd, file));
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    // Two readings per 10 ms period: channel 1 at its start, channel 2 half-way.
    EXPECT_EQ(test::storedValues(file, Signals + "AIN1/Time"), (std::vector<double>{0.0, 0.01, 0.02, 0.03}));
    EXPECT_EQ(test::storedValues(file, Signals + "AIN2/Time"),
              (std::vector<double>{0.005, 0.015, 0.025, 0.035}));
    // Read at different instants, each channel keeps a Time of its own.
    const test::StoredObject time1 = test::storedObject(file, Signals + "AIN1/Time");
    const test::StoredObject time2 = test::storedObject(file, Signals + "AIN2/Time");
    EXPECT_EQ(time1.names, 1u);
    EXPECT_EQ(time2.names, 1u);
    EXPECT_NE(time1.place, time2.place);
    EXPECT_EQ(test::storedValues(file, Signals + "AIN1/Signal"), (std::vector<double>{0.5, 1.0, 1.5, 2.0}));
    EXPECT_EQ(test::storedValues(file, Signals + "AIN2/Signal"), (std::vector<double>{2.5, 5.0, 7.5, 10.0}));
    EXPECT_EQ(test::storedValues(file, Events + "DIO1"), (std::vector<double>{0.01, 0.03}));
    EXPECT_EQ(test::storedValues(file, Events + "DIO2"), (std::vector<double>{0.025, 0.035}));
}

TEST(PyPhotometryConversion, ThreeChannelsShareTimesAcrossBlocksThroughCancelAndCompaction)
{
    // 70000 samples at 1 kHz, more than one block of the reader and the writer; channel c
    // reads (k + c) mod 30000 at sample k.
    constexpr int Samples = 70000;
    std::vector<std::vector<int>> readings(3, std::vector<int>(Samples));
    for (int c = 0; c < 3; ++c) {
        for (int k = 0; k < Samples; ++k)
            readings[c][k] = (k + c) % 30000;
    }
    test::TempDir dir;
    const QString ppd = dir.file(QStringLiteral("three.ppd"));
    ASSERT_TRUE(
        test::writeBytes(ppd, test::ppdBytes(1000.0, "3 colour continuous", {1.0, 0.5, 0.25}, readings, {})));
    const QString file = dir.file(QStringLiteral("out.orvel"));
    const ConversionResult result = FileConversion::run(configFor(ppd, file));
    ASSERT_TRUE(result.ok()) << result.error.toStdString();

    const double volts[] = {1.0, 0.5, 0.25};
    const test::StoredObject shared = test::storedObject(file, Signals + "AIN1/Time");
    EXPECT_EQ(shared.names, 3u);
    for (int c = 0; c < 3; ++c) {
        const QString group = Signals + QStringLiteral("AIN%1/").arg(c + 1);
        EXPECT_EQ(test::storedObject(file, group + "Time").place, shared.place);
        const std::vector<double> values = test::storedValues(file, group + "Signal");
        const std::vector<double> time = test::storedValues(file, group + "Time");
        ASSERT_EQ(values.size(), static_cast<std::size_t>(Samples));
        ASSERT_EQ(time.size(), static_cast<std::size_t>(Samples));
        std::size_t wrong = 0;
        for (int k = 0; k < Samples; ++k)
            wrong += values[k] != ((k + c) % 30000) * volts[c] || time[k] != k / 1000.0;
        EXPECT_EQ(wrong, 0u) << c;
    }

    // Cancelled after the first block, a second conversion into the same file takes its
    // groups, the shared Time's names among them, away again.
    const QStringList before = test::allPaths(file);
    test::RecordingFeedback cancel(1);
    EXPECT_TRUE(FileConversion::run(configFor(ppd, file), &cancel).canceled);
    EXPECT_EQ(test::allPaths(file), before);
    EXPECT_EQ(test::storedObject(file, Signals + "AIN1/Time").names, 3u);

    // Compacting copies DataConverted whole, so the Time stays one dataset with three names.
    const std::vector<double> time = test::storedValues(file, Signals + "AIN3/Time");
    ASSERT_TRUE(FileCompaction::compact(file).ok);
    EXPECT_EQ(test::storedObject(file, Signals + "AIN1/Time").names, 3u);
    EXPECT_EQ(test::storedObject(file, Signals + "AIN3/Time").place,
              test::storedObject(file, Signals + "AIN1/Time").place);
    EXPECT_EQ(test::storedValues(file, Signals + "AIN3/Time"), time);
}

TEST(PyPhotometryConversion, SummaryTellsChannelsRatesEdgesAndDuration)
{
    test::TempDir dir;
    const QString ppd = dir.file(QStringLiteral("mouse1.ppd"));
    ASSERT_TRUE(test::writeBytes(ppd, ContinuousRecording().bytes()));
    const RecordingSummary summary = RecordingImport::describe(configFor(ppd, QString()));
    ASSERT_TRUE(summary.ok()) << summary.error.toStdString();
    EXPECT_EQ(summary.format, QStringLiteral("pyPhotometry"));
    ASSERT_EQ(summary.channels.size(), 2u);
    EXPECT_EQ(summary.channels[0].samples, 300u);
    EXPECT_EQ(summary.channels[0].sampleRate, 50.0);
    ASSERT_EQ(summary.events.size(), 2u);
    EXPECT_EQ(summary.events[0].count, 2u);
    EXPECT_EQ(summary.events[1].count, 1u);
    EXPECT_DOUBLE_EQ(summary.duration, 6.0);
    EXPECT_TRUE(summary.text(ppd).contains(QStringLiteral("signal <b>AIN1</b>: 300 samples at 50 Hz")));
}

/// Cancels at the first question.
class CancelAtOnce : public Feedback
{
public:
    bool isCanceled() const override { return true; }
};

TEST(PyPhotometryConversion, DamagedFilesAndCancelLeaveNothing)
{
    test::TempDir dir;
    const QByteArray good = ContinuousRecording().bytes();
    const QString file = dir.file(QStringLiteral("out.orvel"));
    const auto refused = [&](const QByteArray& bytes, const QString& expected) {
        const QString ppd = dir.file(QStringLiteral("bad.ppd"));
        EXPECT_TRUE(test::writeBytes(ppd, bytes));
        const ConversionResult result = FileConversion::run(configFor(ppd, file));
        EXPECT_TRUE(result.error.contains(expected)) << result.error.toStdString();
        EXPECT_FALSE(QFileInfo::exists(file));
    };
    refused(good.left(good.size() - 1), QStringLiteral("ends within a sample"));
    QByteArray longHeader = good;
    qToLittleEndian<quint16>(60000, longHeader.data());
    refused(longHeader, QStringLiteral("announces 60000 bytes"));
    QByteArray shortHeader = good;
    qToLittleEndian<quint16>(qFromLittleEndian<quint16>(good.constData()) - 5, shortHeader.data());
    refused(shortHeader, QStringLiteral("does not start with a pyPhotometry header"));
    QByteArray noMagic = good;
    noMagic[2] = 'X';
    refused(noMagic, QStringLiteral("is not a recording this program reads"));

    const QString ppd = dir.file(QStringLiteral("good.ppd"));
    ASSERT_TRUE(test::writeBytes(ppd, good));
    CancelAtOnce cancel;
    const ConversionResult result = FileConversion::run(configFor(ppd, file), &cancel);
    EXPECT_TRUE(result.canceled);
    EXPECT_FALSE(QFileInfo::exists(file));
}

} // namespace
} // namespace zarvi
