#pragma once

#include "datafile/DataFileTree.h"

#include <QHash>
#include <QTreeWidget>

#include <memory>
#include <vector>

class QMenu;

namespace zarvi {

class IconFont;

/// The groups and datasets of a data file as an expandable tree with name,
/// shape and element type. It shows a copy read beforehand (it never touches the
/// file) and keeps the expanded groups and the selection across reloads when
/// their paths still exist. Several items can be selected. Its context menu asks
/// for the edits of the file (display, rename, delete, compact) and for saving the
/// pipeline of a result by signals. GUI thread.
class DataFileTreeWidget : public QTreeWidget
{
    Q_OBJECT

public:
    /// `icons` may be null.
    explicit DataFileTreeWidget(IconFont* icons, QWidget* parent = nullptr);

    /// Replaces the content. With `rootPath` set, only that group and what lies
    /// below it are shown.
    void setNodes(std::vector<DataFileNode> nodes, const QString& rootPath = {});
    /// The node at a path, null when the file has none.
    const DataFileNode* node(const QString& path) const;
    /// Every node shown, in tree order.
    const std::vector<DataFileNode>& nodes() const { return m_nodes; }

    /// Paths of the selected items, in tree order.
    QStringList selectedPaths() const;
    QString currentPath() const;
    /// Selects (and reveals) the items at these paths; unknown paths are skipped.
    void selectPaths(const QStringList& paths);
    /// The context menu for a right click on the item at `path` (empty: beside the items):
    /// Display and Delete of the selection, Rename... and Save Pipeline... of a result, and
    /// Compact File.
    std::unique_ptr<QMenu> makeContextMenu(const QString& path);

signals:
    void currentPathChanged(const QString& path);
    void displayRequested();
    void renameRequested(const QString& path);
    void savePipelineRequested(const QString& path);
    void deleteRequested();
    void compactRequested();

private:
    /// The node records an operation's run, or is a sensor group holding such a dataset.
    bool isResult(const QString& path) const;
    QTreeWidgetItem* makeItem(const DataFileNode& node) const;
    void fitColumn(int column);

    IconFont* m_icons;
    std::vector<DataFileNode> m_nodes;
    QHash<QString, std::size_t> m_indexByPath;
    QHash<QString, QTreeWidgetItem*> m_itemByPath;
};

} // namespace zarvi
