#pragma once

#include <QTableWidget>

namespace zarvi {

class DataFileTreeWidget;

/// The attributes of the selected group or dataset, every one of them: for an
/// operation's output they are its parameters. It then follows "SourceDatapath"
/// back to the input and shows that one's attributes too, and so on, so the
/// whole processing history of a result is read in one place. GUI thread.
class AttributesTable : public QTableWidget
{
    Q_OBJECT

public:
    explicit AttributesTable(QWidget* parent = nullptr);

    /// Shows the attributes of `path` and of its sources, from the tree's copy of the file.
    void showHistory(const DataFileTreeWidget& tree, const QString& path);

private:
    void addSection(const QString& title);
    void addRow(const QString& key, const QString& value);
};

} // namespace zarvi
