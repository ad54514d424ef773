#include "app/browser/DataFileTreeWidget.h"

#include "app/IconFont.h"
#include "definitions/DatasetDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "framework/DatasetRenaming.h"

#include <QHeaderView>
#include <QMenu>

#include <algorithm>

namespace zarvi {

namespace {

constexpr int PathRole = Qt::UserRole;
constexpr int HeaderPadding = 36;
constexpr int CellPadding = 8;

QString parentPath(const QString& path)
{
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : path.left(slash);
}

} // namespace

DataFileTreeWidget::DataFileTreeWidget(IconFont* icons, QWidget* parent) : QTreeWidget(parent), m_icons(icons)
{
    setColumnCount(3);
    setHeaderLabels({DatasetDefinitions::nameHeader(), DatasetDefinitions::shapeHeader(),
                     DatasetDefinitions::typeHeader()});
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(0, QHeaderView::Stretch);
    header()->setSectionResizeMode(1, QHeaderView::Interactive);
    header()->setSectionResizeMode(2, QHeaderView::Interactive);
    connect(this, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        emit currentPathChanged(item ? item->data(0, PathRole).toString() : QString());
    });
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this, [this](const QPoint& position) {
        const QTreeWidgetItem* item = itemAt(position);
        makeContextMenu(item ? item->data(0, PathRole).toString() : QString())
            ->exec(viewport()->mapToGlobal(position));
    });
}

std::unique_ptr<QMenu> DataFileTreeWidget::makeContextMenu(const QString& path)
{
    using DD = DatasetDefinitions;
    auto menu = std::make_unique<QMenu>(this);
    const bool any = !selectedPaths().isEmpty();
    menu->addAction(DD::displayAction(), this, &DataFileTreeWidget::displayRequested)->setEnabled(any);
    QAction* rename = menu->addAction(DD::renameAction(), this, [this, path] { emit renameRequested(path); });
    rename->setObjectName(QStringLiteral("actionRename"));
    rename->setEnabled(DatasetRenaming::isRenamable(path));
    QAction* save =
        menu->addAction(DD::savePipelineAction(), this, [this, path] { emit savePipelineRequested(path); });
    save->setObjectName(QStringLiteral("actionSavePipeline"));
    save->setStatusTip(DD::savePipelineTip());
    save->setEnabled(isResult(path));
    menu->addAction(DD::deleteAction(), this, &DataFileTreeWidget::deleteRequested)->setEnabled(any);
    menu->addSeparator();
    QAction* compact = menu->addAction(DD::compactAction(), this, &DataFileTreeWidget::compactRequested);
    compact->setObjectName(QStringLiteral("actionCompact"));
    compact->setStatusTip(DD::compactTip());
    return menu;
}

bool DataFileTreeWidget::isResult(const QString& path) const
{
    const auto records = [this](const QString& candidate) {
        const DataFileNode* found = node(candidate);
        return found && found->attributes.contains(FileDefinitions::Operations);
    };
    if (path.isEmpty())
        return false;
    return records(path) || std::any_of(m_nodes.begin(), m_nodes.end(), [&](const DataFileNode& member) {
               return parentPath(member.path) == path && records(member.path);
           });
}

QTreeWidgetItem* DataFileTreeWidget::makeItem(const DataFileNode& node) const
{
    auto* item = new QTreeWidgetItem;
    item->setText(0, node.name);
    item->setData(0, PathRole, node.path);
    item->setToolTip(0, node.path);
    if (node.kind == ObjectKind::Group) {
        item->setText(2, DatasetDefinitions::groupType());
        if (m_icons)
            item->setIcon(0, m_icons->icon(IconFont::FolderOpen));
    } else if (node.kind == ObjectKind::Dataset) {
        item->setText(1, DataFileTree::shapeText(node.dimensions));
        item->setText(2, DataFileTree::typeName(node.elementType));
        if (m_icons) {
            const bool stack = node.name == FileDefinitions::ImageStack;
            item->setIcon(0, m_icons->icon(stack                         ? IconFont::Picture
                                           : node.dimensions.size() == 1 ? IconFont::LineChart
                                                                         : IconFont::File));
        }
    }
    return item;
}

void DataFileTreeWidget::setNodes(std::vector<DataFileNode> nodes, const QString& rootPath)
{
    QStringList expanded;
    for (auto it = m_itemByPath.cbegin(); it != m_itemByPath.cend(); ++it)
        if (it.value()->isExpanded())
            expanded << it.key();
    const QStringList selected = selectedPaths();
    const QString current = currentPath();
    const bool firstLoad = m_nodes.empty();

    clear();
    m_itemByPath.clear();
    m_indexByPath.clear();
    m_nodes.clear();
    const QString rootPrefix = rootPath + QLatin1Char('/');
    for (DataFileNode& node : nodes)
        if (rootPath.isEmpty() || node.path == rootPath || node.path.startsWith(rootPrefix))
            m_nodes.push_back(std::move(node));

    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        const DataFileNode& node = m_nodes[i];
        QTreeWidgetItem* item = makeItem(node);
        // Parents come before their members, so a parent's item already exists.
        if (QTreeWidgetItem* parent = m_itemByPath.value(parentPath(node.path)))
            parent->addChild(item);
        else
            addTopLevelItem(item);
        m_itemByPath.insert(node.path, item);
        m_indexByPath.insert(node.path, i);
    }

    if (firstLoad) {
        // A file just opened shows its categories and, below them, its devices.
        for (int i = 0; i < topLevelItemCount(); ++i)
            topLevelItem(i)->setExpanded(true);
    } else {
        for (const QString& path : expanded)
            if (QTreeWidgetItem* item = m_itemByPath.value(path))
                item->setExpanded(true);
    }
    if (QTreeWidgetItem* item = m_itemByPath.value(current))
        setCurrentItem(item, 0, QItemSelectionModel::NoUpdate);
    selectPaths(selected);
    fitColumn(1);
    fitColumn(2);
}

void DataFileTreeWidget::fitColumn(int column)
{
    // Style sheets pad header sections beyond what the contents measure, so the
    // title gets room of its own.
    resizeColumnToContents(column);
    const int title = header()->fontMetrics().horizontalAdvance(headerItem()->text(column)) + HeaderPadding;
    setColumnWidth(column, std::max(columnWidth(column) + CellPadding, title));
}

const DataFileNode* DataFileTreeWidget::node(const QString& path) const
{
    const auto it = m_indexByPath.constFind(path);
    return it == m_indexByPath.cend() ? nullptr : &m_nodes[it.value()];
}

QStringList DataFileTreeWidget::selectedPaths() const
{
    QStringList paths;
    // Tree order, not click order, so that displays and deletions are predictable.
    for (const DataFileNode& node : m_nodes)
        if (const QTreeWidgetItem* item = m_itemByPath.value(node.path); item && item->isSelected())
            paths << node.path;
    return paths;
}

QString DataFileTreeWidget::currentPath() const
{
    const QTreeWidgetItem* item = currentItem();
    return item ? item->data(0, PathRole).toString() : QString();
}

void DataFileTreeWidget::selectPaths(const QStringList& paths)
{
    clearSelection();
    for (const QString& path : paths) {
        QTreeWidgetItem* item = m_itemByPath.value(path);
        if (!item)
            continue;
        item->setSelected(true);
        for (QTreeWidgetItem* parent = item->parent(); parent; parent = parent->parent())
            parent->setExpanded(true);
        if (!currentItem())
            setCurrentItem(item, 0, QItemSelectionModel::NoUpdate);
    }
}

} // namespace zarvi
