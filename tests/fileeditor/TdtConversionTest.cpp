#include "ConvertTestSupport.h"
#include "RecordingTestFiles.h"

#include <QFileInfo>

#include "fileeditor/FileConversion.h"
#include "fileeditor/RecordingImport.h"

namespace zarvi {
namespace {

const QString Signals = QStringLiteral("DataConverted/TDT/Signals/Series1/");
const QString Events = QStringLiteral("DataConverted/TDT/Events/Series1/");
constexpr double Start = 1600000000.0;

RecordingConversionConfig configFor(const QString& source, const QString& file)
{
    RecordingConversionConfig config;
    config.sourcePath = source;
    config.destination = ConversionDestination{file, QStringLiteral("TDT"), QString(), 0};
    return config;
}

/// A block of 3 s: "x465" (float, one channel, 100 Hz) in two records, "Raw1" (int16, two
/// channels, 10 Hz), the epoch store "PtC1" with on and off marks (the last left open) and
/// "Tick" with onsets only.
test::TdtBlockBuilder block()
{
    using B = test::TdtBlockBuilder;
    B builder(Start);
    builder.streamFloat("x465", 1, Start + 0.5, 100.0f, {1.5f, 2.5f, 3.5f, 4.5f});
    builder.streamInt16("Raw1", 1, Start + 0.5, 10.0f, {-1, -2});
    builder.streamInt16("Raw1", 2, Start + 0.5, 10.0f, {7, 8});
    builder.epoch("PtC1", B::StrobeOn, Start + 1.0, 1.0);
    builder.streamFloat("x465", 1, Start + 0.54, 100.0f, {5.5f, 6.5f});
    builder.epoch("Tick", B::StrobeOn, Start + 1.25, 0.0);
    builder.epoch("PtC1", B::StrobeOff, Start + 1.5, 1.0);
    builder.epoch("PtC1", B::StrobeOn, Start + 2.0, 2.0);
    builder.stop(Start + 3.0);
    return builder;
}

TEST(TdtConversion, StreamsBecomeSignalsAndEpochsEventArrays)
{
    test::TempDir dir;
    const QString folder = dir.file(QStringLiteral("Block-1"));
    ASSERT_TRUE(block().write(folder, QStringLiteral("Tank_Block-1")));
    const QString file = dir.file(QStringLiteral("out.orvel"));

    const ConversionResult result = FileConversion::run(configFor(folder, file));
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(result.datapaths, (QStringList{Signals + "Raw1-1/Signal", Signals + "Raw1-2/Signal",
                                             Signals + "x465/Signal", Events + "PtC1", Events + "Tick"}));
    EXPECT_EQ(test::storedValues(file, Signals + "x465/Signal"),
              (std::vector<double>{1.5, 2.5, 3.5, 4.5, 5.5, 6.5}));
    // Each record's samples start at its own timestamp.
    const double second = (Start + 0.54) - Start;
    EXPECT_EQ(test::storedValues(file, Signals + "x465/Time"),
              (std::vector<double>{0.5, 0.5 + 1 / 100.0, 0.5 + 2 / 100.0, 0.5 + 3 / 100.0, second,
                                   second + 1 / 100.0}));
    EXPECT_EQ(test::storedValues(file, Signals + "Raw1-1/Signal"), (std::vector<double>{-1, -2}));
    EXPECT_EQ(test::storedValues(file, Signals + "Raw1-2/Signal"), (std::vector<double>{7, 8}));
    EXPECT_EQ(test::storedValues(file, Signals + "Raw1-1/Time"), (std::vector<double>{0.5, 0.6}));
    EXPECT_EQ(test::storedValues(file, Signals + "Raw1-2/Time"), (std::vector<double>{0.5, 0.6}));
    // The two channels of Raw1 are one Time under two names; x465 keeps its own.
    const test::StoredObject raw = test::storedObject(file, Signals + "Raw1-1/Time");
    EXPECT_EQ(raw.names, 2u);
    EXPECT_EQ(test::storedObject(file, Signals + "Raw1-2/Time").place, raw.place);
    EXPECT_EQ(test::storedObject(file, Signals + "x465/Time").names, 1u);
    EXPECT_EQ(test::storedDataset(file, Events + "PtC1").dimensions, (std::vector<hsize_t>{2, 2}));
    EXPECT_EQ(test::storedValues(file, Events + "PtC1"), (std::vector<double>{1.0, 1.5, 2.0, 3.0}));
    EXPECT_EQ(test::storedDataset(file, Events + "Tick").dimensions, (std::vector<hsize_t>{1, 1}));
    EXPECT_EQ(test::storedValues(file, Events + "Tick"), (std::vector<double>{1.25}));
    const QVariantMap attributes = test::storedDataset(file, Events + "Tick").attributes;
    EXPECT_EQ(attributes.value("Format").toString(), QStringLiteral("TDT"));
    EXPECT_EQ(attributes.value("SourceFilepath").toString(), QFileInfo(folder).absoluteFilePath());
    test::expectEditedStamp(file);
}

TEST(TdtConversion, ChosenStoresOnly)
{
    test::TempDir dir;
    const QString folder = dir.file(QStringLiteral("Block-1"));
    ASSERT_TRUE(block().write(folder, QStringLiteral("b")));
    const QString file = dir.file(QStringLiteral("out.orvel"));
    RecordingConversionConfig config = configFor(folder + "/b.tsq", file);
    config.stores = QStringList{"x465", "PtC1"};
    const RecordingSummary summary = RecordingImport::describe(config);
    ASSERT_TRUE(summary.ok()) << summary.error.toStdString();
    ASSERT_EQ(summary.channels.size(), 1u);
    EXPECT_EQ(summary.channels[0].samples, 6u);
    EXPECT_EQ(summary.channels[0].sampleRate, 100.0);
    ASSERT_EQ(summary.events.size(), 1u);
    EXPECT_EQ(summary.events[0].count, 2u);
    EXPECT_DOUBLE_EQ(summary.duration, 3.0);

    const ConversionResult result = FileConversion::run(config);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(result.datapaths, (QStringList{Signals + "x465/Signal", Events + "PtC1"}));

    config.stores = QStringList{"Nope"};
    config.destination.filepath = dir.file(QStringLiteral("other.orvel"));
    EXPECT_EQ(FileConversion::run(config).error,
              QStringLiteral("The block has no store <b>Nope</b>; it has PtC1, Raw1, Tick, x465."));
    EXPECT_FALSE(QFileInfo::exists(config.destination.filepath));
}

TEST(TdtConversion, SnippetsBecomeOnsetsPerChannel)
{
    using B = test::TdtBlockBuilder;
    B builder(Start);
    builder.streamFloat("x465", 1, Start + 0.5, 100.0f, {1.5f, 2.5f});
    const std::vector<float> wave{0.1f, -0.4f, 0.2f, 0.0f};
    builder.snippet("eNe1", 3, 0, Start + 0.75, 24414.0625f, wave);
    builder.snippet("eNe1", 1, 2, Start + 0.8, 24414.0625f, wave);
    builder.snippet("eNe1", 3, 1, Start + 1.125, 24414.0625f, wave);
    builder.snippet("Spk2", 4, 0, Start + 2.25, 24414.0625f, wave);
    builder.stop(Start + 3.0);
    test::TempDir dir;
    const QString folder = dir.file(QStringLiteral("Block-2"));
    ASSERT_TRUE(builder.write(folder, QStringLiteral("b")));
    const QString file = dir.file(QStringLiteral("out.orvel"));

    const RecordingSummary summary = RecordingImport::describe(configFor(folder, file));
    ASSERT_TRUE(summary.ok()) << summary.error.toStdString();
    ASSERT_EQ(summary.events.size(), 3u);
    EXPECT_EQ(summary.events[0].name, QStringLiteral("Spk2"));
    EXPECT_EQ(summary.events[1].name, QStringLiteral("eNe1-1"));
    EXPECT_EQ(summary.events[2].count, 2u);

    const ConversionResult result = FileConversion::run(configFor(folder, file));
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    // A store of one channel is named after the store; the others carry their channel.
    EXPECT_EQ(result.datapaths,
              (QStringList{Signals + "x465/Signal", Events + "Spk2", Events + "eNe1-1", Events + "eNe1-3"}));
    // Onsets are the snippets' timestamps from the start mark, whatever their sort code.
    EXPECT_EQ(test::storedValues(file, Events + "eNe1-3"), (std::vector<double>{0.75, 1.125}));
    EXPECT_EQ(test::storedDataset(file, Events + "eNe1-3").dimensions, (std::vector<hsize_t>{2, 1}));
    EXPECT_EQ(test::storedValues(file, Events + "eNe1-1"), (std::vector<double>{(Start + 0.8) - Start}));
    EXPECT_EQ(test::storedValues(file, Events + "Spk2"), (std::vector<double>{2.25}));
    // The snippets' waveforms in the data file do not disturb the stream read beside them.
    EXPECT_EQ(test::storedValues(file, Signals + "x465/Signal"), (std::vector<double>{1.5, 2.5}));
}

TEST(TdtConversion, ReadsDataFilesLongerThanTheReadWindow)
{
    // 1.2 million float samples (4.8 MB, more than the reader's 4 MiB window) in records of
    // 1000, sample i reading i; a record of a second store is written into the data file
    // after its neighbours but indexed first, so the reader has to go back for it.
    using B = test::TdtBlockBuilder;
    B builder(Start);
    constexpr int Records = 1200;
    constexpr int PerRecord = 1000;
    std::vector<float> samples(PerRecord);
    for (int r = 0; r < Records; ++r) {
        for (int i = 0; i < PerRecord; ++i)
            samples[i] = static_cast<float>(r * PerRecord + i);
        builder.streamFloat("x465", 1, Start + r, 1000.0f, samples);
    }
    B late(Start);
    late.tev = builder.tev;
    late.streamFloat("x405", 1, Start + 0.5, 10.0f, {7.0f, 8.0f});
    late.tsq += builder.tsq.mid(80);
    late.stop(Start + Records);
    test::TempDir dir;
    const QString folder = dir.file(QStringLiteral("Block-3"));
    ASSERT_TRUE(late.write(folder, QStringLiteral("b")));
    const QString file = dir.file(QStringLiteral("out.orvel"));

    const ConversionResult result = FileConversion::run(configFor(folder, file));
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    const std::vector<double> values = test::storedValues(file, Signals + "x465/Signal");
    ASSERT_EQ(values.size(), static_cast<std::size_t>(Records * PerRecord));
    std::size_t wrong = 0;
    for (std::size_t k = 0; k < values.size(); ++k)
        wrong += values[k] != static_cast<double>(k);
    EXPECT_EQ(wrong, 0u);
    EXPECT_EQ(test::storedValues(file, Signals + "x405/Signal"), (std::vector<double>{7.0, 8.0}));
    const std::vector<double> times = test::storedValues(file, Signals + "x465/Time");
    EXPECT_DOUBLE_EQ(times[PerRecord * 7 + 3], 7 + 3 / 1000.0);
}

TEST(TdtConversion, StreamsWithTheSameRecordTimingShareOneTime)
{
    // Eight records of 4 samples at 1 kHz, record r at 1 + 0.004 r s, for "x465", "x405",
    // the channels of "Fi1r" and "Late" (indexed three records behind the others), except
    // that record 5 of Fi1r channel 3 comes 0.1 ms late. "Raw2" (250 Hz, one sample per
    // record) has 8 records on channel 1 and 7 on channel 2. Stream s reads 100 s + its
    // sample number.
    using B = test::TdtBlockBuilder;
    B builder(Start);
    const auto recordAt = [](int r) { return Start + 1 + 0.004 * r; };
    const auto samples = [](int s, int r) {
        std::vector<float> out;
        for (int i = 0; i < 4; ++i)
            out.push_back(static_cast<float>(100 * s + 4 * r + i));
        return out;
    };
    for (int r = 0; r < 11; ++r) {
        if (r < 8) {
            builder.streamFloat("x465", 1, recordAt(r), 1000.0f, samples(1, r));
            builder.streamFloat("x405", 1, recordAt(r), 1000.0f, samples(2, r));
            for (std::uint16_t c = 1; c <= 3; ++c) {
                const double late = c == 3 && r == 5 ? 0.0001 : 0.0;
                builder.streamFloat("Fi1r", c, recordAt(r) + late, 1000.0f, samples(2 + c, r));
            }
            builder.streamFloat("Raw2", 1, recordAt(r), 250.0f, {static_cast<float>(r)});
            if (r < 7)
                builder.streamFloat("Raw2", 2, recordAt(r), 250.0f, {static_cast<float>(-r)});
        }
        if (r >= 3)
            builder.streamFloat("Late", 1, recordAt(r - 3), 1000.0f, samples(6, r - 3));
    }
    builder.stop(Start + 2);
    test::TempDir dir;
    const QString folder = dir.file(QStringLiteral("Block-4"));
    ASSERT_TRUE(builder.write(folder, QStringLiteral("b")));
    const QString file = dir.file(QStringLiteral("out.orvel"));
    const ConversionResult result = FileConversion::run(configFor(folder, file));
    ASSERT_TRUE(result.ok()) << result.error.toStdString();

    std::vector<double> clock;
    for (int r = 0; r < 8; ++r) {
        for (int i = 0; i < 4; ++i)
            clock.push_back((recordAt(r) - Start) + i / 1000.0);
    }
    std::vector<double> lateClock = clock;
    for (int i = 0; i < 4; ++i)
        lateClock[20 + i] = (recordAt(5) + 0.0001 - Start) + i / 1000.0;
    const auto valuesOf = [&](int s) {
        std::vector<double> values;
        for (int r = 0; r < 8; ++r) {
            for (const float v : samples(s, r))
                values.push_back(v);
        }
        return values;
    };
    // Fi1r-1 comes first in name order, so it holds the times of the five alike.
    const test::StoredObject shared = test::storedObject(file, Signals + "Fi1r-1/Time");
    EXPECT_EQ(shared.names, 5u);
    const std::pair<const char*, int> alike[] = {
        {"Fi1r-1", 3}, {"Fi1r-2", 4}, {"Late", 6}, {"x405", 2}, {"x465", 1}};
    for (const auto& [name, s] : alike) {
        const QString group = Signals + name + "/";
        EXPECT_EQ(test::storedObject(file, group + "Time").place, shared.place) << name;
        EXPECT_EQ(test::storedValues(file, group + "Time"), clock) << name;
        EXPECT_EQ(test::storedValues(file, group + "Signal"), valuesOf(s)) << name;
    }
    EXPECT_EQ(test::storedObject(file, Signals + "Fi1r-3/Time").names, 1u);
    EXPECT_EQ(test::storedValues(file, Signals + "Fi1r-3/Time"), lateClock);
    EXPECT_EQ(test::storedValues(file, Signals + "Fi1r-3/Signal"), valuesOf(5));

    // A channel with a record fewer does not share the times of the complete one.
    const test::StoredObject raw1 = test::storedObject(file, Signals + "Raw2-1/Time");
    const test::StoredObject raw2 = test::storedObject(file, Signals + "Raw2-2/Time");
    EXPECT_EQ(raw1.names, 1u);
    EXPECT_EQ(raw2.names, 1u);
    std::vector<double> rawClock;
    for (int r = 0; r < 8; ++r)
        rawClock.push_back(recordAt(r) - Start);
    EXPECT_EQ(test::storedValues(file, Signals + "Raw2-1/Time"), rawClock);
    rawClock.pop_back();
    EXPECT_EQ(test::storedValues(file, Signals + "Raw2-2/Time"), rawClock);
    EXPECT_EQ(test::storedValues(file, Signals + "Raw2-2/Signal"),
              (std::vector<double>{0, -1, -2, -3, -4, -5, -6}));
}

TEST(TdtConversion, DamagedBlocksLeaveNothing)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("out.orvel"));
    const auto refused = [&](const test::TdtBlockBuilder& builder, const QString& expected) {
        const QString folder = dir.file(QStringLiteral("bad"));
        EXPECT_TRUE(builder.write(folder, QStringLiteral("bad")));
        const ConversionResult result = RecordingImport::convert(configFor(folder, file));
        EXPECT_TRUE(result.error.contains(expected)) << result.error.toStdString();
        EXPECT_FALSE(QFileInfo::exists(file));
    };
    test::TdtBlockBuilder truncatedIndex = block();
    truncatedIndex.tsq.chop(7);
    refused(truncatedIndex, QStringLiteral("is truncated"));
    test::TdtBlockBuilder truncatedData = block();
    truncatedData.tev.chop(4);
    refused(truncatedData, QStringLiteral("points past the end"));
    test::TdtBlockBuilder noStart = block();
    noStart.tsq[40 + 8] = 7;
    refused(noStart, QStringLiteral("does not begin with the block's start mark"));

    const ConversionResult missing = RecordingImport::convert(configFor(dir.file("none.tsq"), file));
    EXPECT_TRUE(missing.error.contains(QStringLiteral("is not a TDT block"))) << missing.error.toStdString();

    // Cancelled once its groups are made, a conversion of Raw1 into the Series1 of an
    // existing file takes both channels away, the second name of their Time with them.
    const QString folder = dir.file(QStringLiteral("good"));
    ASSERT_TRUE(block().write(folder, QStringLiteral("good")));
    RecordingConversionConfig config = configFor(folder, file);
    config.stores = QStringList{"x465"};
    ASSERT_TRUE(RecordingImport::convert(config).ok());
    const QStringList before = test::allPaths(file);
    config.stores = QStringList{"Raw1"};
    config.destination.series = 1;
    test::RecordingFeedback cancel(-1);
    EXPECT_TRUE(RecordingImport::convert(config, &cancel).canceled);
    EXPECT_EQ(test::allPaths(file), before);
    EXPECT_EQ(test::storedValues(file, Signals + "x465/Signal"),
              (std::vector<double>{1.5, 2.5, 3.5, 4.5, 5.5, 6.5}));
}

} // namespace
} // namespace zarvi
