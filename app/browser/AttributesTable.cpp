#include "app/browser/AttributesTable.h"

#include "app/browser/DataFileTreeWidget.h"
#include "definitions/DatasetDefinitions.h"
#include "definitions/FileDefinitions.h"

#include <QHeaderView>
#include <QSet>

namespace zarvi {

AttributesTable::AttributesTable(QWidget* parent) : QTableWidget(parent)
{
    setColumnCount(2);
    setHorizontalHeaderLabels({DatasetDefinitions::attributeHeader(), DatasetDefinitions::valueHeader()});
    horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
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
