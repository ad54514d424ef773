#pragma once

#include <QDialog>
#include <QStringList>

#include <optional>
#include <utility>

class QKeyEvent;
class QLabel;
class QPushButton;
class QShowEvent;

namespace zarvi {

class AbstractOperationView;

/// The window an operation's parameters are set in: the datasets it will run on, its
/// view, and a "Run" and a "Close" button. It follows the datasets chosen in the
/// plug-in while it is open (a change during a run applies once the run ended), and
/// says what a run wrote. Run is disabled while the operation runs; only a click on it (or
/// Ctrl+Enter) starts a run, never Enter in a field. GUI thread; deletes itself when
/// closed.
class OperationDialog : public QDialog
{
    Q_OBJECT

public:
    OperationDialog(AbstractOperationView* view, QWidget* parent = nullptr);
    AbstractOperationView* view() const { return m_view; }
    /// Sets the file and the datasets the next run works on.
    void setData(const QString& filepath, const QStringList& datapaths);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    /// The first time: opens at the view's opening size, within the screen.
    void showEvent(QShowEvent* event) override;

private:
    void showDatasets();

    AbstractOperationView* m_view;
    QLabel* m_datasets;
    /// What the last run wrote.
    QLabel* m_result;
    QPushButton* m_runButton;
    bool m_sized = false;
    /// Data chosen while a run was under way, set once it ended.
    std::optional<std::pair<QString, QStringList>> m_pendingData;
};

} // namespace zarvi
