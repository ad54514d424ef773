#include "fileeditor/CsvColumnPreview.h"

#include "definitions/FileEditorOperationDefinitions.h"
#include "fileeditor/SpreadsheetConverter.h"

#include <QHeaderView>

#include <algorithm>

namespace zarvi {

namespace {

using Texts = FileEditorOperationDefinitions;

/// The header and this many data rows.
constexpr int PreviewLines = 9;

} // namespace

CsvColumnPreview::CsvColumnPreview(QWidget* parent) : QTableWidget(parent)
{
    setToolTip(Texts::columnPreviewTooltip());
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::NoSelection);
    verticalHeader()->setVisible(false);
    horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
}

void CsvColumnPreview::setSource(const QString& path, const QString& sheet)
{
    m_preview = CsvTableReader::preview(path, PreviewLines, CsvDelimiter::Automatic, sheet);
    m_hasHeader = m_preview.error.isEmpty() && SpreadsheetConverter::startsWithHeader(path, sheet);
    refresh();
}

void CsvColumnPreview::setRoles(const CsvColumnRoles& roles)
{
    m_roles = roles;
    refresh();
}

QString CsvColumnPreview::roleText(int column) const
{
    const QTableWidgetItem* cell = item(0, column);
    return cell ? cell->text() : QString();
}

void CsvColumnPreview::refresh()
{
    clear();
    const std::vector<QStringList>& lines = m_preview.lines;
    int columns = 0;
    for (const QStringList& line : lines)
        columns = std::max(columns, static_cast<int>(line.size()));
    setColumnCount(columns);
    setRowCount(lines.empty() ? 0 : static_cast<int>(lines.size()) + (m_hasHeader ? 0 : 1));
    if (lines.empty())
        return;
    QStringList titles;
    for (int c = 0; c < columns; ++c) {
        const auto [name, unit] = splitHeaderUnit(m_hasHeader ? lines.front().value(c) : QString());
        titles << QStringLiteral("%1%2").arg(c + 1).arg(name.isEmpty() ? QString()
                                                                       : QStringLiteral(": ") + name);
        QString role;
        const auto trigger = std::find_if(m_roles.triggerColumns.begin(), m_roles.triggerColumns.end(),
                                          [c](const CsvTriggerColumn& t) { return t.column == c; });
        if (c == m_roles.timeColumn)
            role = Texts::timeRoleText();
        else if (std::find(m_roles.eventColumns.begin(), m_roles.eventColumns.end(), c) !=
                 m_roles.eventColumns.end())
            role = Texts::eventRoleText();
        else if (trigger != m_roles.triggerColumns.end())
            role = trigger->threshold ? Texts::triggerLevelRoleText().arg(*trigger->threshold)
                                      : Texts::triggerRoleText();
        else if (const QString shown = unit.isEmpty() ? m_roles.signalUnit : unit; !shown.isEmpty())
            role = Texts::signalWithUnitRoleText().arg(shown);
        else
            role = Texts::signalRoleText();
        auto* roleItem = new QTableWidgetItem(role);
        QFont bold = roleItem->font();
        bold.setBold(true);
        roleItem->setFont(bold);
        setItem(0, c, roleItem);
    }
    setHorizontalHeaderLabels(titles);
    const std::size_t first = m_hasHeader ? 1 : 0;
    for (std::size_t line = first; line < lines.size(); ++line)
        for (int c = 0; c < lines[line].size(); ++c)
            setItem(static_cast<int>(line - first) + 1, c, new QTableWidgetItem(lines[line][c]));
    setRowCount(static_cast<int>(lines.size() - first) + 1);
}

} // namespace zarvi
