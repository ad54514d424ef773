#include "app/browser/AttributesTable.h"

#include "app/browser/DataFileTreeWidget.h"
#include "definitions/DatasetDefinitions.h"
#include "definitions/FileDefinitions.h"

#include <QHeaderView>
#include <QSet>

#include <algorithm>

namespace zarvi {

namespace {
constexpr int HeaderPadding = 36;
constexpr int CellPadding = 16;
} // namespace

AttributesTable::AttributesTable(QWidget* parent) : QTableWidget(parent)
{
    setColumnCount(2);
    setHorizontalHeaderLabels({DatasetDefinitions::attributeHeader(), DatasetDefinitions::valueHeader()});
    horizontalHeader()->setSectionResizeMode(0, QHeaderView::Interactive);
    horizontalHeader()->setStretchLastSection(true);
    verticalHeader()->setVisible(false);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setWordWrap(false);
}

void AttributesTable::showHistory(const DataFileTreeWidget& tree, const QString& path)
{
    setRowCount(0);
    clearSpans();
    QSet<QString> visited;
    QString next = path;
    bool first = true;
    // Each step goes to the input the previous result was computed from; a file
    // that loops back on itself stops at the first repeat.
    while (!next.isEmpty() && !visited.contains(next)) {
        visited.insert(next);
        const DataFileNode* node = tree.node(next);
        if (!node)
            break;
        addSection(first ? node->path : DatasetDefinitions::sourceSection().arg(node->path));
        first = false;
        for (auto it = node->attributes.cbegin(); it != node->attributes.cend(); ++it)
            addRow(it.key(), DataFileTree::valueText(it.value()));
        next = node->attributes.value(FileDefinitions::SourceDatapath).toString();
        while (next.startsWith(QLatin1Char('/')))
            next.remove(0, 1);
    }
    // The key column fits the keys and its title (style sheets pad the title beyond its text).
    int width =
        horizontalHeader()->fontMetrics().horizontalAdvance(horizontalHeaderItem(0)->text()) + HeaderPadding;
    for (int row = 0; row < rowCount(); ++row)
        if (item(row, 1))
            width = std::max(width, fontMetrics().horizontalAdvance(item(row, 0)->text()) + CellPadding);
    setColumnWidth(0, width);
}

void AttributesTable::addSection(const QString& title)
{
    const int row = rowCount();
    insertRow(row);
    auto* item = new QTableWidgetItem(title);
    QFont font = item->font();
    font.setBold(true);
    item->setFont(font);
    item->setToolTip(title);
    setItem(row, 0, item);
    setSpan(row, 0, 1, 2);
}

void AttributesTable::addRow(const QString& key, const QString& value)
{
    const int row = rowCount();
    insertRow(row);
    setItem(row, 0, new QTableWidgetItem(key));
    auto* valueItem = new QTableWidgetItem(value);
    valueItem->setToolTip(value);
    setItem(row, 1, valueItem);
}

} // namespace zarvi
