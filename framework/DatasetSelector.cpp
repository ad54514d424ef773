#include "framework/DatasetSelector.h"

#include "datafile/DataFileTree.h"
#include "datafile/HDF5Reader_V6.h"
#include "definitions/FileDefinitions.h"
#include "framework/LockedFileRead.h"

#include <QHeaderView>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace zarvi {

namespace {

constexpr int pathRole = Qt::UserRole;
constexpr int kindRole = Qt::UserRole + 1;

SelectionKind kindOf(const DataFileNode& node)
{
    if (node.kind != ObjectKind::Dataset)
        return SelectionKind::None;
    if (node.name == FileDefinitions::SignalValues && node.dimensions.size() == 1)
        return SelectionKind::Signals;
    if (node.name == FileDefinitions::ImageStack && node.dimensions.size() == 3)
        return SelectionKind::Images;
    if (node.name == FileDefinitions::ImageStack && node.dimensions.size() == 4)
        return SelectionKind::VoluImages;
    return SelectionKind::None;
}

} // namespace

DatasetSelector::DatasetSelector(QWidget* parent) : QWidget(parent), m_tree(new QTreeWidget(this))
{
    setObjectName(QStringLiteral("datasetSelector"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_tree);
    m_tree->setHeaderLabels({tr("Dataset"), tr("Samples")});
    m_tree->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    connect(m_tree, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int column) {
        if (!m_updating && column == 0 && !item->data(0, pathRole).toString().isEmpty())
            emit selectionChanged(selectedPaths());
    });
}

bool DatasetSelector::reload(const QString& filepath)
{
    std::vector<DataFileNode> nodes;
    {
        LockedFileRead read(filepath);
        if (!read.isOpen())
            return false;
        nodes = DataFileTree::collect(read.reader());
    }
    const QStringList previous = selectedPaths();
    m_updating = true;
    m_tree->clear();
    for (const DataFileNode& node : nodes) {
        const SelectionKind kind = kindOf(node);
        if (kind == SelectionKind::None)
            continue;
        // The group path above the dataset, shown as the item's text.
        const QString group = node.path.left(node.path.lastIndexOf(QLatin1Char('/')));
        auto* item = new QTreeWidgetItem(m_tree, {group, QString::number(node.dimensions.back())});
        item->setToolTip(0, node.path);
        item->setData(0, pathRole, node.path);
        item->setData(0, kindRole, static_cast<int>(kind));
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(0, previous.contains(node.path) ? Qt::Checked : Qt::Unchecked);
    }
    m_updating = false;
    emit selectionChanged(selectedPaths());
    return true;
}

QStringList DatasetSelector::selectedPaths() const
{
    QStringList paths;
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* item = m_tree->topLevelItem(i);
        if (item->checkState(0) == Qt::Checked)
            paths << item->data(0, pathRole).toString();
    }
    return paths;
}

SelectionKind DatasetSelector::selectionKind() const
{
    SelectionKind result = SelectionKind::None;
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* item = m_tree->topLevelItem(i);
        if (item->checkState(0) != Qt::Checked)
            continue;
        const auto kind = static_cast<SelectionKind>(item->data(0, kindRole).toInt());
        if (result == SelectionKind::None)
            result = kind;
        else if (result != kind)
            return SelectionKind::Mixed;
    }
    return result;
}

void DatasetSelector::select(const QStringList& paths)
{
    m_updating = true;
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = m_tree->topLevelItem(i);
        item->setCheckState(0,
                            paths.contains(item->data(0, pathRole).toString()) ? Qt::Checked : Qt::Unchecked);
    }
    m_updating = false;
    emit selectionChanged(selectedPaths());
}

} // namespace zarvi
