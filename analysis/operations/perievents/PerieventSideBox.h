#pragma once

#include <QGroupBox>
#include <QVariantMap>

class QDoubleSpinBox;
class QLineEdit;
class QTableWidget;
class QToolButton;

namespace zarvi {

/// The parameters of one side (onset or offset) of the perievent analysis: its time
/// frame and its table of statistic time frames (name, start, end), with add and
/// remove buttons (remove takes the selected rows, else the row being edited, else the
/// last). Object names carry the side's prefix ("on", "off"):
/// `dsb_onWindowStart`, `dsb_onWindowEnd`, `tw_onStatistic`, `tb_onAdd`, `tb_onRemove`.
/// Table cells are line edits, so that a faulty one can be painted. GUI thread.
class PerieventSideBox : public QGroupBox
{
    Q_OBJECT

public:
    /// `prefix` "on" or "off"; `title` and `tooltip` of the box.
    PerieventSideBox(const QString& prefix, const QString& title, const QString& tooltip,
                     QWidget* parent = nullptr);

    double windowStart() const;
    double windowEnd() const;
    void setWindow(double start, double end);
    void addFrame(const QString& name, double start, double end);
    /// Takes the time frame `window` [start, end] and the statistic time frames `bounds`
    /// [s1, e1, ...] named `names`, as a run recorded them; a list of the wrong length is ignored.
    void restore(const QVariantList& window, const QVariantList& bounds, const QStringList& names);
    int frameCount() const;
    /// The line edit of a table cell (column 0 name, 1 start, 2 end).
    QLineEdit* cell(int row, int column) const;
    QTableWidget* table() const { return m_table; }

    /// Paints every faulty cell with "background-color: red;" and clears the others:
    /// an empty or repeated name, a start or end that is not a number, a start not
    /// below its end, or a frame outside the time frame. True when none is faulty.
    bool check();
    /// The time frames as [s1, e1, s2, e2, ...] and their names (after a passed check).
    QVariantList frameBounds() const;
    QStringList frameNames() const;

signals:
    void windowChanged();

private:
    void removeSelectedRows();

    QDoubleSpinBox* m_start;
    QDoubleSpinBox* m_end;
    QTableWidget* m_table;
    QToolButton* m_add;
    QToolButton* m_remove;
};

} // namespace zarvi
