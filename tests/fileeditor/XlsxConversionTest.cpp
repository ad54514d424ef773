#include "ConvertTestSupport.h"

#include "fileeditor/SpreadsheetConverter.h"
#include "fileeditor/XlsxSheetReader.h"

#include <QDir>

#include <xlsxwriter.h>

namespace zarvi {
namespace {

SpreadsheetConversionConfig tableConfig(const QString& source, const QString& file, const QString& sheet = {})
{
    SpreadsheetConversionConfig config;
    config.sourcePath = source;
    config.sheet = sheet;
    config.destination = ConversionDestination{file, QStringLiteral("Photometry"), QString(), 0};
    config.eventColumns = {2};
    config.triggerColumns = {CsvTriggerColumn{3, {}}};
    return config;
}

/// One cell to write: a number, or a text when `text` is set; rows hold no cell for an
/// empty one.
struct Cell
{
    double number = 0.0;
    const char* text = nullptr;
    bool empty = false;
};

void writeSheet(lxw_workbook* book, const char* name, const std::vector<std::vector<Cell>>& rows)
{
    lxw_worksheet* sheet = workbook_add_worksheet(book, name);
    for (std::size_t r = 0; r < rows.size(); ++r) {
        for (std::size_t c = 0; c < rows[r].size(); ++c) {
            const Cell& cell = rows[r][c];
            const auto row = static_cast<lxw_row_t>(r);
            const auto column = static_cast<lxw_col_t>(c);
            if (cell.text)
                worksheet_write_string(sheet, row, column, cell.text, nullptr);
            else if (!cell.empty)
                worksheet_write_number(sheet, row, column, cell.number, nullptr);
        }
    }
}

/// The table of both sheets: time in seconds, a signal whose header names its unit, an
/// event column in milliseconds with empty cells, and a 0/1 trigger line, high on rows
/// 3-4 and from row 7 to the end.
const std::vector<std::vector<Cell>> RecordingRows{
    {{0, "Time"}, {0, "Green (V)"}, {0, "Reward (ms)"}, {0, "Cue"}},
    {{0.0}, {1}, {250}, {0}},
    {{0.1}, {2}, {0, nullptr, true}, {0}},
    {{0.2}, {3}, {0, nullptr, true}, {1}},
    {{0.3}, {4}, {1500}, {1}},
    {{0.4}, {5}, {0, nullptr, true}, {0}},
    {{0.5}, {6}, {0, nullptr, true}, {0}},
    {{0.6}, {7}, {0, nullptr, true}, {1}},
};
const char* RecordingCsv = "Time,Green (V),Reward (ms),Cue\n"
                           "0.0,1,250,0\n0.1,2,,0\n0.2,3,,1\n0.3,4,1500,1\n0.4,5,,0\n0.5,6,,0\n0.6,7,,1\n";
/// The second sheet: the same columns, other values.
const std::vector<std::vector<Cell>> OtherRows{
    {{0, "Time"}, {0, "Green (V)"}, {0, "Reward (ms)"}, {0, "Cue"}},
    {{0.0}, {-1}, {0, nullptr, true}, {1}},
    {{0.5}, {-2}, {100}, {0}},
    {{1.0}, {-3}, {0, nullptr, true}, {0}},
};
const char* OtherCsv = "Time,Green (V),Reward (ms),Cue\n0.0,-1,,1\n0.5,-2,100,0\n1.0,-3,,0\n";

/// A workbook of two sheets; `inlineStrings` writes the texts in their cells rather
/// than in the shared string table.
void writeWorkbook(const QString& path, bool inlineStrings)
{
    lxw_workbook_options options = {};
    options.constant_memory = inlineStrings ? LXW_TRUE : LXW_FALSE;
    const QByteArray name = QFile::encodeName(path);
    lxw_workbook* book = workbook_new_opt(name.constData(), &options);
    writeSheet(book, "Recording", RecordingRows);
    writeSheet(book, "Other", OtherRows);
    ASSERT_EQ(workbook_close(book), LXW_NO_ERROR);
}

/// Converts both sources and expects the same datasets, values and units.
void expectSameConversion(const test::TempDir& dir, const QString& workbook, const QString& sheet,
                          const char* csvText)
{
    const QString csv = dir.file(QStringLiteral("table.csv"));
    test::writeText(csv, csvText);
    // One data file per conversion, so that each writes its first series.
    const QString label = sheet + QFileInfo(workbook).baseName();
    const QString fromCsv = dir.file(QStringLiteral("csv%1.orvel").arg(label));
    const QString fromBook = dir.file(QStringLiteral("xlsx%1.orvel").arg(label));
    const ConversionResult csvResult = SpreadsheetConverter::convert(tableConfig(csv, fromCsv));
    const ConversionResult bookResult = SpreadsheetConverter::convert(tableConfig(workbook, fromBook, sheet));
    ASSERT_TRUE(csvResult.ok()) << csvResult.error.toStdString();
    ASSERT_TRUE(bookResult.ok()) << bookResult.error.toStdString();
    ASSERT_EQ(bookResult.datapaths.join(' ').toStdString(), csvResult.datapaths.join(' ').toStdString());
    for (const QString& path : csvResult.datapaths) {
        EXPECT_EQ(test::storedValues(fromBook, path), test::storedValues(fromCsv, path))
            << path.toStdString();
        EXPECT_EQ(test::storedDataset(fromBook, path).attributes.value("Unit"),
                  test::storedDataset(fromCsv, path).attributes.value("Unit"))
            << path.toStdString();
    }
}

TEST(XlsxConversion, SheetsConvertAsTheSameTableWrittenAsCsv)
{
    test::TempDir dir;
    const QString shared = dir.file(QStringLiteral("shared.xlsx"));
    const QString inlined = dir.file(QStringLiteral("inline.xlsx"));
    writeWorkbook(shared, false);
    writeWorkbook(inlined, true);

    QStringList names;
    QString error;
    ASSERT_TRUE(XlsxSheetReader::sheetNames(shared, names, error)) << error.toStdString();
    EXPECT_EQ(names, (QStringList{"Recording", "Other"}));

    // The first sheet when none is named.
    for (const QString& workbook : {shared, inlined}) {
        expectSameConversion(dir, workbook, QString(), RecordingCsv);
        expectSameConversion(dir, workbook, QStringLiteral("Other"), OtherCsv);
    }

    // The values themselves, from the table above.
    const QString file = dir.file(QStringLiteral("xlsx") + QStringLiteral("shared.orvel"));
    const QString series = QStringLiteral("DataConverted/Photometry/Signals/Series1/");
    const QString events = QStringLiteral("DataConverted/Photometry/Events/Series1/");
    EXPECT_EQ(test::storedValues(file, series + "Green/Signal"), (std::vector<double>{1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(test::storedDataset(file, series + "Green/Signal").attributes.value("Unit").toString(), "V");
    EXPECT_EQ(test::storedValues(file, events + "Reward"), (std::vector<double>{0.25, 1.5}));
    EXPECT_EQ(test::storedValues(file, events + "Cue"), (std::vector<double>{0.2, 0.4, 0.6, 0.6}));
}

TEST(XlsxConversion, DatesReadAsTheirSerialNumbers)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("dates.xlsx"));
    const QByteArray name = QFile::encodeName(path);
    lxw_workbook* book = workbook_new(name.constData());
    lxw_worksheet* sheet = workbook_add_worksheet(book, nullptr);
    lxw_format* format = workbook_add_format(book);
    format_set_num_format(format, "yyyy-mm-dd hh:mm");
    lxw_datetime noon = {2024, 1, 1, 12, 0, 0.0};
    worksheet_write_datetime(sheet, 0, 0, &noon, format);
    worksheet_write_boolean(sheet, 0, 1, 1, nullptr);
    ASSERT_EQ(workbook_close(book), LXW_NO_ERROR);

    std::vector<XlsxRow> rows;
    QString error;
    ASSERT_TRUE(XlsxSheetReader::readSheet(path, QString(), rows, error)) << error.toStdString();
    ASSERT_EQ(rows.size(), 1u);
    // Days since 1899-12-30: 2024-01-01 is day 45292, and noon half a day more.
    EXPECT_EQ(rows[0].cells, (std::vector<std::string>{"45292.5", "1"}));
}

/// Zips the parts under `folder` into `archive` with the zip program.
bool zipParts(const QString& folder, const QString& archive)
{
    const test::ToolRun run = test::runTool(
        QStringLiteral("sh"),
        {QStringLiteral("-c"), QStringLiteral("cd \"$0\" && zip -q -r \"$1\" ."), folder, archive});
    return run.exitCode == 0;
}

TEST(XlsxConversion, ReadsHandWrittenPartsAndRefusesWhatIsNoSheet)
{
    if (!test::haveTool(QStringLiteral("zip")))
        GTEST_SKIP() << "the zip program is not installed";
    test::TempDir dir;
    const QString parts = dir.file(QStringLiteral("parts"));
    ASSERT_TRUE(QDir().mkpath(parts + "/xl/_rels") && QDir().mkpath(parts + "/xl/worksheets"));
    test::writeText(parts + "/xl/workbook.xml",
                    R"(<?xml version="1.0" encoding="UTF-8"?>
<workbook xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"
 xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">
 <sheets><sheet name="Empty" sheetId="1" r:id="rId2"/><sheet name="Data &amp; notes" sheetId="2" r:id="rId1"/></sheets>
</workbook>)");
    test::writeText(parts + "/xl/_rels/workbook.xml.rels",
                    R"(<?xml version="1.0" encoding="UTF-8"?>
<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">
 <Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet" Target="worksheets/data.xml"/>
 <Relationship Id="rId2" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet" Target="/xl/worksheets/empty.xml"/>
</Relationships>)");
    test::writeText(parts + "/xl/sharedStrings.xml",
                    R"(<?xml version="1.0" encoding="UTF-8"?>
<sst xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" count="2" uniqueCount="2">
 <si><t>Time</t></si>
 <si><r><rPr><b/></rPr><t>Gre</t></r><r><t xml:space="preserve">en (V)</t></r><rPh sb="0" eb="1"><t>x</t></rPh></si>
</sst>)");
    // Row 1: A1 shared, C1 inline with B1 left out; rows 2 and 3 are missing; row 4 has
    // no B4, so its gap is an empty cell.
    test::writeText(parts + "/xl/worksheets/data.xml",
                    R"(<?xml version="1.0" encoding="UTF-8"?>
<worksheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><sheetData>
 <row r="1"><c r="A1" t="s"><v>0</v></c><c r="C1" t="inlineStr"><is><t>Red</t></is></c><c r="D1" t="s"><v>1</v></c></row>
 <row r="4"><c r="A4"><v>0.5</v></c><c r="C4"><f>1+1</f><v>2</v></c><c r="D4" t="b"><v>1</v></c><c r="E4" s="1"/></row>
</sheetData></worksheet>)");
    test::writeText(parts + "/xl/worksheets/empty.xml",
                    R"(<?xml version="1.0" encoding="UTF-8"?>
<worksheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><sheetData/></worksheet>)");
    const QString workbook = dir.file(QStringLiteral("hand.xlsx"));
    ASSERT_TRUE(zipParts(parts, workbook));

    QStringList names;
    QString error;
    ASSERT_TRUE(XlsxSheetReader::sheetNames(workbook, names, error)) << error.toStdString();
    EXPECT_EQ(names, (QStringList{"Empty", "Data & notes"}));
    std::vector<XlsxRow> rows;
    ASSERT_TRUE(XlsxSheetReader::readSheet(workbook, QStringLiteral("Data & notes"), rows, error))
        << error.toStdString();
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].number, 1u);
    EXPECT_EQ(rows[0].cells, (std::vector<std::string>{"Time", "", "Red", "Green (V)"}));
    EXPECT_EQ(rows[1].number, 4u);
    EXPECT_EQ(rows[1].cells, (std::vector<std::string>{"0.5", "", "2", "1"}));

    // The gap is an empty cell of a value column, named by the sheet's row number.
    const QString file = dir.file(QStringLiteral("never.orvel"));
    SpreadsheetConversionConfig config = tableConfig(workbook, file, QStringLiteral("Data & notes"));
    config.eventColumns.clear();
    config.triggerColumns.clear();
    EXPECT_EQ(SpreadsheetConverter::convert(config).error, QStringLiteral("Line 4, column 2 is empty."));
    config.sheet.clear();
    EXPECT_EQ(SpreadsheetConverter::convert(config).error,
              QStringLiteral("<b>%1</b> is empty.").arg(workbook));

    config.sheet = QStringLiteral("Session 2");
    EXPECT_EQ(SpreadsheetConverter::convert(config).error,
              QStringLiteral("<b>%1</b> has no sheet named <b>Session 2</b>; its sheets are <b>Empty</b>, "
                             "<b>Data &amp; notes</b>.")
                  .arg(workbook));
    const QString notZip = dir.file(QStringLiteral("text.xlsx"));
    test::writeText(notZip, "Time,Green\n0,1\n");
    config.sourcePath = notZip;
    config.sheet.clear();
    EXPECT_EQ(
        SpreadsheetConverter::convert(config).error,
        QStringLiteral("<b>%1</b> is not an Excel workbook (.xlsx): The file is not a ZIP archive: it has "
                       "no central directory.")
            .arg(notZip));
    EXPECT_FALSE(QFileInfo::exists(file));
}

} // namespace
} // namespace zarvi
