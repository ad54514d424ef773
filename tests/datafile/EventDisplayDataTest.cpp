#include "events/EventDisplayData.h"
#include "common/EventTestFile.h"
#include "common/TempDir.h"
#include "datafile/DataFileTree.h"
#include "datafile/HDF5Reader_V6.h"

#include <gtest/gtest.h>

using namespace zarvi;

namespace {

const QString events1 = QStringLiteral("DataAcquisition/Rig/Events/Series1");
const QString events2 = QStringLiteral("DataAcquisition/Rig/Events/Series2");
const QString signals1 = QStringLiteral("DataAcquisition/Rig/Signals/Series1");

} // namespace

// An event array file read as the browser reads it: which datasets are event
// arrays, what each holds and is called, and which signals were recorded with it.
TEST(EventDisplayData, ReadsArraysWithTheirLabelsAndFindsTheirRecording)
{
    test::TempDir dir;
    const QString file = dir.file("events.orvel");
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.create(file), 0);
        ASSERT_TRUE(
            test::writeEventArray(writer, events1, "Lever", {1.5, 4.0, 9.25}, {2.0, 5.5, 9.75}, "Press"));
        ASSERT_TRUE(test::writeEventArray(writer, events1, "Tone", {0.5, 3.0}));
        ASSERT_TRUE(test::writeEventArray(writer, events2, "Empty", {}, {}));
        ASSERT_TRUE(test::writeRampSignal(writer, signals1 + "/Green", 10, 1.0));
        ASSERT_TRUE(test::writeRampSignal(writer, signals1 + "/Red", 10, 1.0));
        ASSERT_TRUE(test::writeRampSignal(writer, "DataAcquisition/Rig/Signals/Series2/Green", 10, 1.0));
        ASSERT_TRUE(test::writeRampSignal(writer, "DataProcessed/Rig/Signals/Series1/FilteredSignals1/Green",
                                          10, 1.0));
        writer.closeFile();
    }
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    const std::vector<DataFileNode> nodes = DataFileTree::collect(reader);
    QStringList arrays;
    for (const DataFileNode& node : nodes)
        if (EventDisplayData::isEventArray(node))
            arrays << node.path;
    EXPECT_EQ(arrays, QStringList({events1 + "/Lever", events1 + "/Tone", events2 + "/Empty"}));

    LabelledEvents lever;
    QString error;
    ASSERT_TRUE(EventDisplayData::read(reader, events1 + "/Lever", lever, error)) << error.toStdString();
    EXPECT_EQ(lever.path, events1 + "/Lever");
    EXPECT_EQ(lever.label, QStringLiteral("Press"));
    EXPECT_EQ(lever.events.onsets(), std::vector<double>({1.5, 4.0, 9.25}));
    EXPECT_EQ(lever.events.offsets(), std::vector<double>({2.0, 5.5, 9.75}));

    // Without "Username" an array is called by its dataset's name; onsets only, no offsets.
    LabelledEvents tone;
    ASSERT_TRUE(EventDisplayData::read(reader, events1 + "/Tone", tone, error));
    EXPECT_EQ(tone.label, QStringLiteral("Tone"));
    EXPECT_EQ(tone.events.onsets(), std::vector<double>({0.5, 3.0}));
    EXPECT_FALSE(tone.events.hasOffsets());

    LabelledEvents empty;
    ASSERT_TRUE(EventDisplayData::read(reader, events2 + "/Empty", empty, error));
    EXPECT_EQ(empty.label, QStringLiteral("Empty"));
    EXPECT_TRUE(empty.events.isEmpty());

    // A sensor group is no event array.
    LabelledEvents wrong;
    error.clear();
    EXPECT_FALSE(EventDisplayData::read(reader, signals1 + "/Green", wrong, error));
    EXPECT_FALSE(error.isEmpty());
    reader.closeFile();

    // The recording is the device and the series, whatever the category or the data kind.
    EXPECT_EQ(EventDisplayData::recording(events1 + "/Lever"), QStringLiteral("Rig/Series1"));
    EXPECT_EQ(EventDisplayData::recording("DataProcessed/Rig/Signals/Series1/FilteredSignals1/Green/Signal"),
              QStringLiteral("Rig/Series1"));
    EXPECT_EQ(EventDisplayData::recording("DataAcquisition/Rig/Images/Series1/Cam/ImageStack"), QString());
    EXPECT_EQ(
        EventDisplayData::sameRecording({events1 + "/Lever", events2 + "/Empty"},
                                        {"DataProcessed/Rig/Signals/Series1/FilteredSignals1/Green/Signal"}),
        QStringList({events1 + "/Lever"}));

    // The recorded signals of the same category, device and series; not the processed ones.
    EXPECT_EQ(EventDisplayData::recordingSignals(nodes, events1 + "/Lever"),
              QStringList({signals1 + "/Green/Signal", signals1 + "/Red/Signal"}));
    EXPECT_EQ(EventDisplayData::recordingSignals(nodes, events2 + "/Empty"),
              QStringList({"DataAcquisition/Rig/Signals/Series2/Green/Signal"}));
}
