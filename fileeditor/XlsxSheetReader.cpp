#include "fileeditor/XlsxSheetReader.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QXmlStreamReader>

#include "datafile/ZipArchiveReader.h"
#include "definitions/FileEditorOperationDefinitions.h"

namespace zarvi {

namespace {

using Texts = FileEditorOperationDefinitions;

const QString WorkbookPart = QStringLiteral("xl/workbook.xml");
const QString WorkbookRelationsPart = QStringLiteral("xl/_rels/workbook.xml.rels");
const QString SharedStringsPart = QStringLiteral("xl/sharedStrings.xml");

/// The parts of an opened workbook, by their path inside the archive.
struct Workbook
{
    QString path;
    QHash<QString, QByteArray> parts;
};

bool openWorkbook(const QString& path, Workbook& workbook, QString& error)
{
    QFile file(path);
    if (!file.exists()) {
        error = Texts::missingFileMessage().arg(path);
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        error = Texts::unableToOpenMessage().arg(path);
        return false;
    }
    std::vector<ZipArchiveReader::Entry> entries;
    QString zipError;
    if (!ZipArchiveReader::read(file.readAll(), entries, zipError)) {
        error = Texts::notWorkbookMessage().arg(path, zipError);
        return false;
    }
    workbook.path = path;
    for (ZipArchiveReader::Entry& entry : entries)
        workbook.parts.insert(entry.name, std::move(entry.data));
    if (!workbook.parts.contains(WorkbookPart)) {
        error = Texts::workbookPartMissingMessage().arg(path, WorkbookPart);
        return false;
    }
    return true;
}

bool xmlFailed(const QXmlStreamReader& xml, const Workbook& workbook, const QString& part, QString& error)
{
    if (!xml.hasError())
        return false;
    error = Texts::workbookPartDamagedMessage().arg(workbook.path, part, xml.errorString().toHtmlEscaped());
    return true;
}

/// The text of a string item (<si> or <is>, the reader on its start): its own <t>, or
/// the <t> of each rich-text run; the phonetic hints (<rPh>) are not part of the text.
QString stringItemText(QXmlStreamReader& xml)
{
    QString text;
    const QString itemName = xml.name().toString();
    int phonetic = 0;
    while (xml.readNext() != QXmlStreamReader::Invalid) {
        if (xml.isStartElement()) {
            if (xml.name() == QLatin1String("rPh"))
                ++phonetic;
            else if (xml.name() == QLatin1String("t") && phonetic == 0)
                text += xml.readElementText();
        } else if (xml.isEndElement()) {
            if (xml.name() == QLatin1String("rPh"))
                --phonetic;
            else if (xml.name() == itemName)
                break;
        }
    }
    return text;
}

/// The sheets' names and their parts' paths, in the workbook's order.
bool readSheetList(const Workbook& workbook, QStringList& names, QStringList& parts, QString& error)
{
    if (!workbook.parts.contains(WorkbookRelationsPart)) {
        error = Texts::workbookPartMissingMessage().arg(workbook.path, WorkbookRelationsPart);
        return false;
    }
    QHash<QString, QString> targets;
    QXmlStreamReader relations(workbook.parts.value(WorkbookRelationsPart));
    while (!relations.atEnd()) {
        relations.readNext();
        if (!relations.isStartElement() || relations.name() != QLatin1String("Relationship"))
            continue;
        const QString target = relations.attributes().value(QLatin1String("Target")).toString();
        // Targets are relative to the workbook's folder unless they start at the root.
        targets.insert(relations.attributes().value(QLatin1String("Id")).toString(),
                       target.startsWith(QLatin1Char('/')) ? target.mid(1) : QStringLiteral("xl/") + target);
    }
    if (xmlFailed(relations, workbook, WorkbookRelationsPart, error))
        return false;
    QXmlStreamReader xml(workbook.parts.value(WorkbookPart));
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement() || xml.name() != QLatin1String("sheet"))
            continue;
        QString relation;
        for (const QXmlStreamAttribute& attribute : xml.attributes()) {
            if (attribute.name() == QLatin1String("id"))
                relation = attribute.value().toString();
        }
        names << xml.attributes().value(QLatin1String("name")).toString();
        parts << targets.value(relation);
    }
    if (xmlFailed(xml, workbook, WorkbookPart, error))
        return false;
    if (names.isEmpty()) {
        error = Texts::workbookNoSheetsMessage().arg(workbook.path);
        return false;
    }
    return true;
}

bool readSharedStrings(const Workbook& workbook, QStringList& strings, QString& error)
{
    // A workbook without any text cells has no string table.
    if (!workbook.parts.contains(SharedStringsPart))
        return true;
    QXmlStreamReader xml(workbook.parts.value(SharedStringsPart));
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == QLatin1String("si"))
            strings << stringItemText(xml);
    }
    return !xmlFailed(xml, workbook, SharedStringsPart, error);
}

/// The column (from 0) of a cell reference such as "C5", or -1 when it names none.
int referenceColumn(QStringView reference)
{
    int column = 0;
    qsizetype letters = 0;
    while (letters < reference.size() && reference[letters].isLetter()) {
        column = column * 26 + (reference[letters].toUpper().unicode() - 'A' + 1);
        ++letters;
    }
    return letters == 0 || letters > 3 ? -1 : column - 1;
}

/// Reads one cell (the reader on its <c>) into its text.
QString cellValue(QXmlStreamReader& xml, const QStringList& strings)
{
    const QString type = xml.attributes().value(QLatin1String("t")).toString();
    QString value;
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("v")) {
            value = xml.readElementText();
        } else if (xml.name() == QLatin1String("is")) {
            value = stringItemText(xml);
        } else {
            xml.skipCurrentElement();
        }
    }
    if (type == QLatin1String("s")) {
        bool ok = false;
        const int index = value.toInt(&ok);
        return ok && index >= 0 && index < strings.size() ? strings[index] : QString();
    }
    return value;
}

bool readRows(const Workbook& workbook, const QString& part, const QStringList& strings,
              std::vector<XlsxRow>& rows, std::size_t rowLimit, QString& error)
{
    QXmlStreamReader xml(workbook.parts.value(part));
    std::size_t previousRow = 0;
    while (!xml.atEnd() && (rowLimit == 0 || rows.size() < rowLimit)) {
        xml.readNext();
        if (!xml.isStartElement() || xml.name() != QLatin1String("row"))
            continue;
        XlsxRow row;
        bool numbered = false;
        row.number = xml.attributes().value(QLatin1String("r")).toULongLong(&numbered);
        if (!numbered)
            row.number = previousRow + 1;
        previousRow = row.number;
        while (xml.readNextStartElement()) {
            if (xml.name() != QLatin1String("c")) {
                xml.skipCurrentElement();
                continue;
            }
            // A cell without a reference follows the one before it.
            const int column = referenceColumn(xml.attributes().value(QLatin1String("r")));
            const QString text = cellValue(xml, strings);
            const std::size_t at = column >= 0 ? static_cast<std::size_t>(column) : row.cells.size();
            if (row.cells.size() <= at)
                row.cells.resize(at + 1);
            row.cells[at] = text.trimmed().toStdString();
        }
        while (!row.cells.empty() && row.cells.back().empty())
            row.cells.pop_back();
        if (!row.cells.empty())
            rows.push_back(std::move(row));
    }
    return !xmlFailed(xml, workbook, part, error);
}

} // namespace

bool XlsxSheetReader::isWorkbook(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QStringLiteral("xlsx") || suffix == QStringLiteral("xlsm") ||
           suffix == QStringLiteral("xls");
}

bool XlsxSheetReader::sheetNames(const QString& path, QStringList& names, QString& error)
{
    Workbook workbook;
    QStringList parts;
    names.clear();
    return openWorkbook(path, workbook, error) && readSheetList(workbook, names, parts, error);
}

bool XlsxSheetReader::readSheet(const QString& path, const QString& sheet, std::vector<XlsxRow>& rows,
                                QString& error, std::size_t rowLimit)
{
    Workbook workbook;
    QStringList names;
    QStringList parts;
    if (!openWorkbook(path, workbook, error) || !readSheetList(workbook, names, parts, error))
        return false;
    const qsizetype index = sheet.isEmpty() ? 0 : names.indexOf(sheet);
    if (index < 0) {
        QStringList quoted;
        for (const QString& name : names)
            quoted << QStringLiteral("<b>%1</b>").arg(name.toHtmlEscaped());
        error =
            Texts::sheetMissingMessage().arg(path, sheet.toHtmlEscaped(), quoted.join(QStringLiteral(", ")));
        return false;
    }
    if (!workbook.parts.contains(parts[index])) {
        error = Texts::workbookPartMissingMessage().arg(path, parts[index]);
        return false;
    }
    QStringList strings;
    rows.clear();
    return readSharedStrings(workbook, strings, error) &&
           readRows(workbook, parts[index], strings, rows, rowLimit, error);
}

} // namespace zarvi
