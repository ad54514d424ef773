#pragma once

#include <QStringList>
#include <QWidget>

class QTreeWidget;

namespace zarvi {

/// Kind of the datasets chosen in a DatasetSelector.
enum class SelectionKind
{
    None,
    Signals,
    Images,
    VoluImages,
    Mixed
};

/// Lists the processable datasets of a data file (signals and image stacks)
/// with check boxes, grouped by their path; the checked ones are the inputs of
/// the next operation. Reads the file briefly on reload and keeps nothing open.
/// GUI thread.
class DatasetSelector : public QWidget
{
    Q_OBJECT

public:
    explicit DatasetSelector(QWidget* parent = nullptr);

    /// Re-reads the file; keeps the checks of paths that still exist. False when
    /// the file is busy or unreadable (the list is left as it was).
    bool reload(const QString& filepath);
    QStringList selectedPaths() const;
    SelectionKind selectionKind() const;
    /// Checks exactly these paths (those that exist).
    void select(const QStringList& paths);

signals:
    void selectionChanged(const QStringList& paths);

private:
    QTreeWidget* m_tree;
    bool m_updating = false;
};

} // namespace zarvi
