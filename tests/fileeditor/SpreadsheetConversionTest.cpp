#include "ConvertTestSupport.h"

#include "datafile/HDF5Writer_V6.h"
#include "fileeditor/SpreadsheetConverter.h"
#include "framework/OperationRunner.h"

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

TEST(SpreadsheetConverter, RefusesWorkbooksAndUnreadableTablesWithTheirLine)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("never.orvel"));
    const QString workbook = dir.file(QStringLiteral("sheet.xlsx"));
    test::writeText(workbook, "PK");
    ConversionResult result = SpreadsheetConverter::convert(tableConfig(workbook, file));
    EXPECT_EQ(
        result.error,
        QStringLiteral("<b>%1</b> is an Excel workbook. Workbooks cannot be read: no .xlsx reader is "
                       "available to this program. Save the sheet as .csv in your spreadsheet program and "
                       "convert the .csv file.")
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
