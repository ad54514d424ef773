#pragma once

#include "fileeditor/CsvTableReader.h"

#include <QTableWidget>

namespace zarvi {

/// How the columns of a table will be read: the time column, the event and trigger
/// columns (0-based) and the unit of value columns whose header names none.
struct CsvColumnRoles
{
    int timeColumn = 0;
    std::vector<int> eventColumns;
    std::vector<CsvTriggerColumn> triggerColumns;
    QString signalUnit;
};

/// The first rows of a table shown before it is converted, under a first row that
/// says the role each column will take ("Time", "Signal (V)", "Event times",
/// "Trigger, ..."), so that a wrong column number is seen before anything is written.
/// Reads only the first lines of the file. GUI thread.
class CsvColumnPreview : public QTableWidget
{
    Q_OBJECT

public:
    explicit CsvColumnPreview(QWidget* parent = nullptr);

    /// Reads the first rows of `path` (of its sheet `sheet` for a workbook, the first when
    /// empty); an unreadable file leaves the table empty.
    void setSource(const QString& path, const QString& sheet = QString());
    void setRoles(const CsvColumnRoles& roles);
    /// The role shown above column `column` (from 0).
    QString roleText(int column) const;

private:
    void refresh();

    CsvPreview m_preview;
    bool m_hasHeader = false;
    CsvColumnRoles m_roles;
};

} // namespace zarvi
