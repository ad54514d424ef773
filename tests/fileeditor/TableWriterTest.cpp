#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "FileToolHelpers.h"
#include "common/TempDir.h"
#include "fileeditor/CsvTableWriter.h"
#include "fileeditor/XlsxTableWriter.h"

namespace zarvi {
namespace {

using test::haveTool;
using test::runTool;

bool sameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

/// The text of one member of an .xlsx (zip) file, through the unzip program.
QByteArray zipMember(const QString& path, const QString& member)
{
    return runTool(QStringLiteral("unzip"), {QStringLiteral("-p"), path, member}).output;
}

TEST(CsvTableWriter, NumbersReadBackBitForBit)
{
    test::TempDir dir;
    const std::vector<double> awkward = {0.0,
                                         0.1,
                                         1.0 / 3.0,
                                         -0.0,
                                         1e-300,
                                         5e-324,
                                         2.2250738585072014e-308,
                                         1e300,
                                         123456789.123456789,
                                         -2.5,
                                         std::numeric_limits<double>::max()};
    TableData table;
    table.columns.push_back({QStringLiteral("Time"), QStringLiteral("s"), awkward});
    std::vector<double> signal(awkward.size());
    for (std::size_t i = 0; i < signal.size(); ++i)
        signal[i] = std::sin(0.37 * static_cast<double>(i)) * 1e-3;
    table.columns.push_back({QStringLiteral("Signal"), QStringLiteral("V"), signal});
    const QString path = dir.file(QStringLiteral("out.csv"));
    const TableWriteResult result = CsvTableWriter::write(table, CsvTableWriterConfig{path});
    ASSERT_TRUE(result.ok()) << result.error.toStdString();

    // Read back with the C library, independently of the program's own parser.
    const QList<QByteArray> lines = test::readText(path).split('\n');
    ASSERT_EQ(lines.size(), static_cast<qsizetype>(awkward.size() + 2));
    EXPECT_EQ(lines[0], QByteArray("Time (s),Signal (V)"));
    EXPECT_TRUE(lines.last().isEmpty());
    for (std::size_t i = 0; i < awkward.size(); ++i) {
        const QList<QByteArray> cells = lines[static_cast<qsizetype>(i + 1)].split(',');
        ASSERT_EQ(cells.size(), 2);
        EXPECT_TRUE(sameBits(std::strtod(cells[0].constData(), nullptr), awkward[i])) << cells[0].constData();
        EXPECT_TRUE(sameBits(std::strtod(cells[1].constData(), nullptr), signal[i])) << cells[1].constData();
    }
}

TEST(CsvTableWriter, WritesRowNamesAndTwoDimensionalResults)
{
    test::TempDir dir;
    const std::vector<double> timePoints = {-1.0, 0.0, 0.5};
    const std::vector<double> values = {1, 2, 3, 4, 5, 6};
    const TableData table = TableData::fromRows(
        QStringLiteral("Event"), {QStringLiteral("Lever press"), QStringLiteral("Tone, 2 kHz")}, timePoints,
        QStringLiteral("s"), values);
    const QString path = dir.file(QStringLiteral("heatmap.csv"));
    ASSERT_TRUE(CsvTableWriter::write(table, CsvTableWriterConfig{path}).ok());
    EXPECT_EQ(test::readText(path), QByteArray("Event,-1 (s),0 (s),0.5 (s)\n"
                                                  "Lever press,1,2,3\n"
                                                  "\"Tone, 2 kHz\",4,5,6\n"));

    // Columns of unequal length leave empty cells; a non-ASCII unit brings a byte-order mark.
    TableData uneven;
    uneven.columns.push_back({QStringLiteral("Signal"), QStringLiteral("µV"), {1.5, 2.5, 3.5}});
    uneven.columns.push_back({QStringLiteral("Events \"A\""), QString(), {0.25}});
    ASSERT_TRUE(CsvTableWriter::write(uneven, CsvTableWriterConfig{path, ';'}).ok());
    EXPECT_EQ(test::readText(path), QByteArray("\xEF\xBB\xBFSignal (\xC2\xB5V);\"Events \"\"A\"\"\"\n"
                                                  "1.5;0.25\n2.5;\n3.5;\n"));

    EXPECT_FALSE(CsvTableWriter::write(TableData(), CsvTableWriterConfig{path}).ok());
    test::RecordingFeedback cancel(-1);
    const TableWriteResult canceled =
        CsvTableWriter::write(uneven, CsvTableWriterConfig{dir.file(QStringLiteral("never.csv"))}, &cancel);
    EXPECT_TRUE(canceled.canceled);
    EXPECT_FALSE(QFile::exists(dir.file(QStringLiteral("never.csv"))));
}

TEST(XlsxTableWriter, WritesWorkbookWithHeaderValuesAndRowNames)
{
    if (!haveTool(QStringLiteral("unzip")))
        GTEST_SKIP() << "unzip is not installed";
    test::TempDir dir;
    TableData table;
    table.rowNamesTitle = QStringLiteral("Event");
    table.rowNames = {QStringLiteral("Lever press"), QStringLiteral("Tone")};
    table.columns.push_back({QStringLiteral("Time"), QStringLiteral("s"), {0.25, 1.5}});
    table.columns.push_back(
        {QStringLiteral("Signal"), QStringLiteral("V"), {-3.0, std::numeric_limits<double>::quiet_NaN()}});
    const QString path = dir.file(QStringLiteral("out.xlsx"));
    const TableWriteResult result = XlsxTableWriter::write(table, XlsxTableWriterConfig{path});
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(result.sheetCount, 1);

    const test::ToolRun listing = runTool(QStringLiteral("unzip"), {QStringLiteral("-l"), path});
    ASSERT_EQ(listing.exitCode, 0) << listing.output.toStdString();
    EXPECT_TRUE(listing.output.contains("xl/worksheets/sheet1.xml"));
    EXPECT_FALSE(listing.output.contains("xl/worksheets/sheet2.xml"));
    EXPECT_TRUE(zipMember(path, QStringLiteral("xl/workbook.xml")).contains("name=\"Sheet1\""));
    const QByteArray sheet = zipMember(path, QStringLiteral("xl/worksheets/sheet1.xml"));
    for (const char* expected : {"<t>Event</t>", "<t>Time (s)</t>", "<t>Signal (V)</t>", "<t>Lever press</t>",
                                 "<v>0.25</v>", "<v>1.5</v>", "<v>-3</v>", "<t>NaN</t>"})
        EXPECT_TRUE(sheet.contains(expected)) << expected;
    EXPECT_TRUE(sheet.contains("<dimension ref=\"A1:C3\"/>")) << sheet.left(400).toStdString();
}

TEST(XlsxTableWriter, ContinuesPastTheRowLimitOnFurtherSheets)
{
    if (!haveTool(QStringLiteral("unzip")))
        GTEST_SKIP() << "unzip is not installed";
    test::TempDir dir;
    // One more than a sheet's data rows plus ten: the last eleven rows go to Sheet2.
    const std::size_t rows = XlsxTableWriter::SheetRows - 1 + 11;
    TableData table;
    table.columns.push_back({QStringLiteral("Index"), QString(), std::vector<double>(rows)});
    for (std::size_t i = 0; i < rows; ++i)
        table.columns[0].values[i] = static_cast<double>(i);
    const QString path = dir.file(QStringLiteral("long.xlsx"));
    const TableWriteResult result = XlsxTableWriter::write(table, XlsxTableWriterConfig{path});
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(result.sheetCount, 2);

    const QByteArray workbook = zipMember(path, QStringLiteral("xl/workbook.xml"));
    EXPECT_TRUE(workbook.contains("name=\"Sheet1\""));
    EXPECT_TRUE(workbook.contains("name=\"Sheet2\""));
    const QByteArray second = zipMember(path, QStringLiteral("xl/worksheets/sheet2.xml"));
    EXPECT_TRUE(second.contains("<dimension ref=\"A1:A12\"/>")) << second.left(400).toStdString();
    EXPECT_TRUE(second.contains("<t>Index</t>"));
    EXPECT_TRUE(second.contains("<v>1048575</v>"));
    EXPECT_TRUE(second.contains("<v>1048585</v>"));
    const QByteArray first = zipMember(path, QStringLiteral("xl/worksheets/sheet1.xml")).left(1000);
    EXPECT_TRUE(first.contains("<dimension ref=\"A1:A1048576\"/>"));

    TableData wide;
    wide.rowNames = {QStringLiteral("r")};
    wide.columns.resize(XlsxTableWriter::SheetColumns);
    const TableWriteResult refused = XlsxTableWriter::write(wide, XlsxTableWriterConfig{path});
    EXPECT_EQ(refused.error,
              QStringLiteral("The table has 16385 columns, but an Excel sheet holds at most 16384; "
                             "export it as .csv instead."));
}

} // namespace
} // namespace zarvi
