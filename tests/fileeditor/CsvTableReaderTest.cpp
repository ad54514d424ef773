#include <gtest/gtest.h>

#include "FileToolHelpers.h"
#include "common/TempDir.h"
#include "fileeditor/CsvTableReader.h"

namespace zarvi {
namespace {

CsvTable parse(const test::TempDir& dir, const QByteArray& text, CsvTableReaderConfig config,
               Feedback* feedback = nullptr)
{
    config.path = dir.file(QStringLiteral("table.csv"));
    test::writeText(config.path, text);
    return CsvTableReader::read(config, feedback);
}

TEST(CsvTableReader, ParsesHandWrittenFileExactly)
{
    test::TempDir dir;
    // Byte-order mark, quoted header cells (one holding the delimiter), a delimiter
    // after the last cell, CRLF line ends, an event column with gaps, a blank last line.
    const QByteArray text = "\xEF\xBB\xBF\"Time (ms)\",\"Signal, raw\",Ref,Events,\r\n"
                            "0,1.5,-2,100,\r\n"
                            "500, 2.25 ,1e-3,,\r\n"
                            "1000,-0.125,+3,750.5,\r\n"
                            "\r\n";
    CsvTableReaderConfig config;
    config.timeUnit = TimeUnit::Milliseconds;
    config.eventColumns = {3};
    const CsvTable table = parse(dir, text, config);
    ASSERT_TRUE(table.ok()) << table.error.toStdString();
    EXPECT_EQ(table.delimiter, ',');
    // The unit in a header is not part of the column's name.
    EXPECT_EQ(table.columnNames, (QStringList{"Time", "Signal, raw", "Ref", "Events"}));
    EXPECT_EQ(table.time, (std::vector<double>{0.0, 0.5, 1.0}));
    ASSERT_EQ(table.columns.size(), 2u);
    EXPECT_EQ(table.columns[0].name, QStringLiteral("Signal, raw"));
    EXPECT_EQ(table.columns[0].values, (std::vector<double>{1.5, 2.25, -0.125}));
    EXPECT_EQ(table.columns[1].name, QStringLiteral("Ref"));
    EXPECT_EQ(table.columns[1].values, (std::vector<double>{-2.0, 0.001, 3.0}));
    ASSERT_EQ(table.events.size(), 1u);
    EXPECT_EQ(table.events[0].name, QStringLiteral("Events"));
    EXPECT_EQ(table.events[0].values, (std::vector<double>{0.1, 0.7505}));

    // Events in the order asked for; a column asked for twice counts once.
    config.eventColumns = {3, 2, 3};
    const CsvTable twoEvents = parse(dir, text, config);
    ASSERT_TRUE(twoEvents.ok()) << twoEvents.error.toStdString();
    ASSERT_EQ(twoEvents.events.size(), 2u);
    EXPECT_EQ(twoEvents.events[0].name, QStringLiteral("Events"));
    EXPECT_EQ(twoEvents.events[1].name, QStringLiteral("Ref"));
    EXPECT_EQ(twoEvents.events[1].values, (std::vector<double>{-0.002, 0.000001, 0.003}));
    EXPECT_EQ(twoEvents.columns.size(), 1u);
}

TEST(CsvTableReader, DetectsDelimiterAndNamesColumnsWithoutHeader)
{
    test::TempDir dir;
    CsvTableReaderConfig config;
    config.hasHeader = false;
    config.timeUnit = TimeUnit::Minutes;
    // Semicolons with decimal commas, as spreadsheet programs in many locales write them.
    const CsvTable semicolon = parse(dir, "0;1,5;2\n0,5;2,5;3\n", config);
    ASSERT_TRUE(semicolon.ok()) << semicolon.error.toStdString();
    EXPECT_EQ(semicolon.delimiter, ';');
    EXPECT_EQ(semicolon.columnNames, (QStringList{"Time", "Sensor1", "Sensor2"}));
    EXPECT_EQ(semicolon.time, (std::vector<double>{0.0, 30.0}));
    ASSERT_EQ(semicolon.columns.size(), 2u);
    EXPECT_EQ(semicolon.columns[0].name, QStringLiteral("Sensor1"));
    EXPECT_EQ(semicolon.columns[0].values, (std::vector<double>{1.5, 2.5}));
    EXPECT_EQ(semicolon.columns[1].values, (std::vector<double>{2.0, 3.0}));

    config.hasHeader = true;
    config.timeColumn = 1;
    config.timeUnit = TimeUnit::Microseconds;
    const CsvTable tab = parse(dir, "a\tt\n7\t1500000\n8\t2500000\n", config);
    ASSERT_TRUE(tab.ok()) << tab.error.toStdString();
    EXPECT_EQ(tab.delimiter, '\t');
    EXPECT_EQ(tab.time, (std::vector<double>{1.5, 2.5}));
    EXPECT_EQ(tab.columns[0].values, (std::vector<double>{7.0, 8.0}));

    // No time column: every column is data; an empty header cell gets a generated name.
    config.timeColumn = -1;
    config.delimiter = CsvDelimiter::Comma;
    const CsvTable untimed = parse(dir, "x,,y\n1,2,3\n", config);
    ASSERT_TRUE(untimed.ok()) << untimed.error.toStdString();
    EXPECT_TRUE(untimed.time.empty());
    EXPECT_EQ(untimed.columnNames, (QStringList{"x", "Sensor2", "y"}));
    EXPECT_EQ(untimed.columns[1].values, (std::vector<double>{2.0}));
}

TEST(CsvTableReader, ErrorsNameTheLineAndColumn)
{
    test::TempDir dir;
    const CsvTableReaderConfig config;
    EXPECT_EQ(parse(dir, "t,v\n0,1\n1,abc\n", config).error,
              QStringLiteral("Line 3, column 2: 'abc' is not a number."));
    EXPECT_EQ(parse(dir, "t,v\n0,1\n\n1,2,3\n", config).error,
              QStringLiteral("Line 4 has 3 columns, expected 2."));
    EXPECT_EQ(parse(dir, "t,v\n0,1\n1\n", config).error, QStringLiteral("Line 3 has 1 columns, expected 2."));
    EXPECT_EQ(parse(dir, "t,v\n0,\n", config).error, QStringLiteral("Line 2, column 2 is empty."));
    EXPECT_EQ(parse(dir, "t,v\n1.5.2,3\n", config).error,
              QStringLiteral("Line 2, column 1: '1.5.2' is not a number."));
    // One decimal comma makes a number, two do not.
    EXPECT_FALSE(parse(dir, "t;v\n0;1,2,3\n", config).ok());

    const QString path = dir.file(QStringLiteral("table.csv"));
    EXPECT_EQ(parse(dir, "", config).error, QStringLiteral("<b>%1</b> is empty.").arg(path));
    EXPECT_EQ(parse(dir, "\r\n \r\n", config).error, QStringLiteral("<b>%1</b> is empty.").arg(path));
    EXPECT_EQ(parse(dir, "t,v\r\n", config).error,
              QStringLiteral("<b>%1</b> holds a header but no data rows.").arg(path));

    CsvTableReaderConfig events;
    events.eventColumns = {2};
    EXPECT_EQ(parse(dir, "t,v\n0,1\n", events).error,
              QStringLiteral("Column 3 does not exist; the file has 2 columns."));
    events.eventColumns = {0};
    EXPECT_EQ(parse(dir, "t,v\n0,1\n", events).error,
              QStringLiteral("Column 1 cannot be both the time column and an event column."));
}

TEST(CsvTableReader, ReportsProgressByBytesAndStopsWhenCanceled)
{
    test::TempDir dir;
    QByteArray text = "t,v\n";
    for (int i = 0; i < 5000; ++i)
        text += QByteArray::number(i) + ',' + QByteArray::number(i * 2) + '\n';

    test::RecordingFeedback progress;
    const CsvTable table = parse(dir, text, CsvTableReaderConfig(), &progress);
    ASSERT_TRUE(table.ok());
    EXPECT_EQ(table.time.size(), 5000u);
    EXPECT_EQ(table.columns[0].values.back(), 9998.0);
    ASSERT_FALSE(progress.percents.empty());
    EXPECT_EQ(progress.percents.back(), 100);
    EXPECT_LE(progress.percents.size(), 101u);
    EXPECT_TRUE(std::is_sorted(progress.percents.begin(), progress.percents.end()));

    test::RecordingFeedback cancel(40);
    const CsvTable canceled = parse(dir, text, CsvTableReaderConfig(), &cancel);
    EXPECT_TRUE(canceled.canceled);
    EXPECT_FALSE(canceled.ok());
    EXPECT_LE(cancel.percents.back(), 41);
}

} // namespace
} // namespace zarvi
