#pragma once

#include <QDialog>

class QPushButton;

namespace zarvi {

class AbstractOperationView;

/// The window an operation's parameters are set in: its view above a "Run" and a
/// "Close" button. Run is disabled while the operation runs. GUI thread; deletes
/// itself when closed.
class OperationDialog : public QDialog
{
    Q_OBJECT

public:
    OperationDialog(AbstractOperationView* view, QWidget* parent = nullptr);
    AbstractOperationView* view() const { return m_view; }

private:
    AbstractOperationView* m_view;
    QPushButton* m_runButton;
};

} // namespace zarvi
