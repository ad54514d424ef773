#pragma once

#include <QGroupBox>
#include <QString>
#include <QStringList>

#include "fileeditor/RecordingSummary.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QToolButton;

namespace zarvi {

/// The part of the Convert window for a recording of an acquisition system: what the
/// recording holds (signals with their samples and rates, event arrays, duration), or why
/// it cannot be read, shown before anything is written; for a TDT block the list of its
/// stores to tick, for a Neurophotometrics file its optional digital-input file. What is
/// shown follows the choices. GUI thread.
class RecordingSourcePanel : public QGroupBox
{
    Q_OBJECT

public:
    explicit RecordingSourcePanel(QWidget* parent = nullptr);

    /// Reads what the recording at path holds and lists a block's stores, all ticked.
    void setSource(const QString& path);
    /// The recording's format ("TDT"...), empty when the source is none.
    QString format() const { return m_summary.format; }
    /// True when the source is a TDT block, whose stores are chosen.
    bool hasStores() const;
    QStringList chosenStores() const;
    QString digitalInputsPath() const;

private:
    void describe();
    void browseDigitalInputs();

    QString m_path;
    RecordingSummary m_summary;
    QLabel* m_storesLabel = nullptr;
    QListWidget* m_stores = nullptr;
    QLabel* m_digitalInputsLabel = nullptr;
    QLineEdit* m_digitalInputs = nullptr;
    QToolButton* m_browseDigitalInputs = nullptr;
    QLabel* m_found = nullptr;
};

} // namespace zarvi
