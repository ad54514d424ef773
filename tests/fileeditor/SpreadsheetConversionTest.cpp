#include "ConvertTestSupport.h"

#include "datafile/HDF5Writer_V6.h"
#include "fileeditor/SpreadsheetConverter.h"
#include "framework/OperationRunner.h"

#include <QFileInfo>

namespace zarvi {
namespace {

using FD = FileDefinitions;

SpreadsheetConversionConfig tableConfig(const QString& source, const QString& file)
{
    SpreadsheetConversionConfig config;
    config.sourcePath = source;
    config.destination = ConversionDestination{file, QStringLiteral("Photometry"), QString(), 0};
    return config;
}

TEST(SpreadsheetConverter, TurnsColumnsIntoSignalsAndEventsThatOperationsAccept)
{
    test::TempDir dir;
    const QString csv = dir.file(QStringLiteral("recording.csv"));
    // Time in milliseconds; "Red/Iso" and "Series" cannot be group names as they stand.
    test::writeText(csv, "Time;Green;Red/Iso;Lever;Series\n"
                         "0;1,5;-2;750;7\n"
                         "250;2,5;-3;;8\n"
                         "500;3,5;-4;125;9\n"
                         "750;4,5;-5;;10\n"
                         "1000;5,5;-6;;11\n");
    const QString file = dir.file(QStringLiteral("photometry.orvel"));
    SpreadsheetConversionConfig config = tableConfig(csv, file);
    config.timeUnit = TimeUnit::Milliseconds;
    config.eventColumns = {3};
    const ConversionResult result = SpreadsheetConverter::convert(config);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();

    const QString series = QStringLiteral("DataConverted/Photometry/Signals/Series1/");
    EXPECT_EQ(result.datapaths,
              (QStringList{series + "Green/Signal", series + "Red_Iso/Signal", series + "Sensor3/Signal",
                           QStringLiteral("DataConverted/Photometry/Events/Series1/Lever")}));
    const std::vector<double> time{0.0, 0.25, 0.5, 0.75, 1.0};
    EXPECT_EQ(test::storedValues(file, series + "Green/Signal"),
              (std::vector<double>{1.5, 2.5, 3.5, 4.5, 5.5}));
    EXPECT_EQ(test::storedValues(file, series + "Green/Time"), time);
    EXPECT_EQ(test::storedValues(file, series + "Red_Iso/Signal"), (std::vector<double>{-2, -3, -4, -5, -6}));
    EXPECT_EQ(test::storedValues(file, series + "Sensor3/Signal"), (std::vector<double>{7, 8, 9, 10, 11}));
    EXPECT_EQ(test::storedValues(file, series + "Sensor3/Time"), time);
    EXPECT_EQ(test::storedDataset(file, series + "Red_Iso/Signal").attributes.value("Username").toString(),
              QStringLiteral("Red/Iso"));
    EXPECT_EQ(result.notes.size(), 2);
    EXPECT_EQ(
        result.notes.first(),
        QStringLiteral("Column <b>Red/Iso</b> is stored as <b>Red_Iso</b>: a name must not hold \"/\" or "
                       "\"\\\", be a reserved name of the data file, contain \"Series\" or repeat another "
                       "column's name."));

    const QString events = QStringLiteral("DataConverted/Photometry/Events/Series1/Lever");
    const test::StoredDataset lever = test::storedDataset(file, events);
    EXPECT_EQ(lever.dimensions, (std::vector<hsize_t>{2, 1}));
    EXPECT_EQ(lever.type.elementClass, ElementClass::Float);
    EXPECT_EQ(lever.type.size, 8u);
    EXPECT_EQ(lever.attributes.value("Unit").toString(), QStringLiteral("s"));
    EXPECT_EQ(test::storedValues(file, events), (std::vector<double>{0.125, 0.75}));
    test::expectEditedStamp(file);

    // The converted signal is an ordinary input of the signal operations.
    OperationRunner runner;
    const RunResult decimated =
        runner.run({{"Operations", "Decimation"}, {"DecimationFactor", 2}}, file, {series + "Green/Signal"});
    ASSERT_TRUE(decimated.succeeded()) << decimated.errors.join(' ').toStdString();
    ASSERT_EQ(decimated.datapaths.size(), 1);
    EXPECT_EQ(test::storedValues(file, decimated.datapaths.first()), (std::vector<double>{1.5, 3.5, 5.5}));

    // A second table goes into the next series of each kind.
    const ConversionResult second = SpreadsheetConverter::convert(config);
    ASSERT_TRUE(second.ok()) << second.error.toStdString();
    EXPECT_EQ(second.datapaths.first(),
              QStringLiteral("DataConverted/Photometry/Signals/Series2/Green/Signal"));
    EXPECT_EQ(second.datapaths.last(), QStringLiteral("DataConverted/Photometry/Events/Series2/Lever"));
}

TEST(SpreadsheetConverter, TriggerColumnsBecomePulsesAndHeaderUnitsBecomeUnits)
{
    test::TempDir dir;
    const QString csv = dir.file(QStringLiteral("triggers.csv"));
    // A 0/1 line high on rows 2-3 and 6 (to the end), a 0/5 V line read with its
    // half-way level 2.5 (high on rows 1 and 4-5), and the same 0/5 V line read with a
    // typed level of 4.9 (4.8 stays low). Reward times are in milliseconds by the header.
    test::writeText(csv, "Time,Green (V),Red,Cue,TTL (V),TTL2,Reward (ms)\n"
                         "0.0,1,4,0,0,0,250\n"
                         "0.1,2,5,0,5,4.8,\n"
                         "0.2,3,6,1,0,0,\n"
                         "0.3,4,7,1,0,0,1500\n"
                         "0.4,5,8,0,5,5,\n"
                         "0.5,6,9,0,5,5,\n"
                         "0.6,7,1,1,0,0,\n");
    const QString file = dir.file(QStringLiteral("triggers.orvel"));
    SpreadsheetConversionConfig config = tableConfig(csv, file);
    config.eventColumns = {6};
    ASSERT_TRUE(parseTriggerColumns(QStringLiteral("4, 5,6:4.9"), config.triggerColumns));
    config.signalUnit = QStringLiteral("mV");
    const ConversionResult result = SpreadsheetConverter::convert(config);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();

    const QString series = QStringLiteral("DataConverted/Photometry/Signals/Series1/");
    const QString events = QStringLiteral("DataConverted/Photometry/Events/Series1/");
    EXPECT_EQ(result.datapaths,
              (QStringList{series + "Green/Signal", series + "Red/Signal", events + "Reward", events + "Cue",
                           events + "TTL", events + "TTL2"}));
    // The header's unit, else the typed one.
    EXPECT_EQ(test::storedDataset(file, series + "Green/Signal").attributes.value("Unit").toString(), "V");
    EXPECT_EQ(test::storedDataset(file, series + "Red/Signal").attributes.value("Unit").toString(), "mV");
    EXPECT_EQ(test::storedValues(file, events + "Reward"), (std::vector<double>{0.25, 1.5}));
    // Onset: the first high sample; offset: the first low one, or the last sample.
    const test::StoredDataset cue = test::storedDataset(file, events + "Cue");
    EXPECT_EQ(cue.dimensions, (std::vector<hsize_t>{2, 2}));
    EXPECT_EQ(test::storedValues(file, events + "Cue"), (std::vector<double>{0.2, 0.4, 0.6, 0.6}));
    EXPECT_EQ(test::storedValues(file, events + "TTL"), (std::vector<double>{0.1, 0.2, 0.4, 0.6}));
    EXPECT_EQ(test::storedValues(file, events + "TTL2"), (std::vector<double>{0.4, 0.6}));
    EXPECT_EQ(cue.attributes.value("Username").toString(), "Cue");

    // A trigger column must have the time to place its edges, and one role per column.
    std::vector<CsvTriggerColumn> parsed;
    EXPECT_FALSE(parseTriggerColumns(QStringLiteral("4:high"), parsed));
    EXPECT_FALSE(parseTriggerColumns(QStringLiteral("0"), parsed));
    std::vector<int> eventColumns;
    EXPECT_TRUE(parseEventColumns(QStringLiteral(" 3, 10"), eventColumns));
    EXPECT_EQ(eventColumns, (std::vector<int>{2, 9}));
    EXPECT_FALSE(parseEventColumns(QStringLiteral("3,0"), eventColumns));
    EXPECT_FALSE(parseEventColumns(QStringLiteral("3;4"), eventColumns));
    config.destination.filepath = dir.file(QStringLiteral("refused.orvel"));
    config.triggerColumns = {CsvTriggerColumn{6, {}}};
    EXPECT_EQ(SpreadsheetConverter::convert(config).error, "Column 7 is given two roles; choose one.");
    EXPECT_FALSE(QFileInfo::exists(config.destination.filepath));
}

TEST(SpreadsheetConverter, RefusesWorkbooksAndUnreadableTablesWithTheirLine)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("never.orvel"));
    const QString workbook = dir.file(QStringLiteral("sheet.xlsx"));
    test::writeText(workbook, "PK");
    ConversionResult result = SpreadsheetConverter::convert(tableConfig(workbook, file));
    EXPECT_EQ(result.error,
              QStringLiteral("<b>%1</b> is not an Excel workbook (.xlsx): The file is not a ZIP "
                             "archive: it has no central directory.")
                  .arg(workbook));

    const QString text = dir.file(QStringLiteral("text.csv"));
    test::writeText(text, "t,a,b\n0,1,2\n1,abc,3\n");
    result = SpreadsheetConverter::convert(tableConfig(text, file));
    EXPECT_EQ(result.error, QStringLiteral("Line 3, column 2: 'abc' is not a number."));

    const QString ragged = dir.file(QStringLiteral("ragged.csv"));
    test::writeText(ragged, "t,a,b\n0,1,2\n1,2,3\n2,3\n");
    result = SpreadsheetConverter::convert(tableConfig(ragged, file));
    EXPECT_EQ(result.error, QStringLiteral("Line 4 has 2 columns, expected 3."));

    const QString timeOnly = dir.file(QStringLiteral("time.csv"));
    test::writeText(timeOnly, "0\n1\n");
    result = SpreadsheetConverter::convert(tableConfig(timeOnly, file));
    EXPECT_EQ(result.error,
              QStringLiteral("<b>%1</b> holds no value or event columns besides the time.").arg(timeOnly));
    EXPECT_FALSE(QFileInfo::exists(file));
}

TEST(SpreadsheetConverter, RecognisesHeaderLines)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("h.csv"));
    test::writeText(path, "\xEF\xBB\xBF\n\"time\",1\n");
    EXPECT_TRUE(SpreadsheetConverter::startsWithHeader(path));
    test::writeText(path, "0.5;1,25;-3e-2\n");
    EXPECT_FALSE(SpreadsheetConverter::startsWithHeader(path));
}

} // namespace
} // namespace zarvi
