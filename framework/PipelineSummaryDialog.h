#pragma once

#include <QDialog>
#include <QList>
#include <QStringList>
#include <QVariantMap>

class QLabel;
class QPushButton;

namespace zarvi {

/// Shows a pipeline before anything is done with it: its steps in order, each with its
/// parameters ("1. Decimation — DecimationFactor = 10"), and the datasets it runs on or
/// was recorded from, with an accept button ("Run", "Save...") and Cancel. GUI thread.
class PipelineSummaryDialog : public QDialog
{
    Q_OBJECT

public:
    PipelineSummaryDialog(const QList<QVariantMap>& steps, const QString& datasetsHeading,
                          const QStringList& datasets, const QString& acceptText, QWidget* parent = nullptr);

    QLabel* stepsLabel() const { return m_steps; }
    QLabel* datasetsLabel() const { return m_datasets; }
    QPushButton* acceptButton() const { return m_accept; }
    QPushButton* cancelButton() const { return m_cancel; }

private:
    QLabel* m_steps = nullptr;
    QLabel* m_datasets = nullptr;
    QPushButton* m_accept = nullptr;
    QPushButton* m_cancel = nullptr;
};

} // namespace zarvi
