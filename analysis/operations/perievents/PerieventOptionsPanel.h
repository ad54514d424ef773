#pragma once

#include "events/EventArrayFile.h"

#include <QVariantMap>
#include <QWidget>

#include <vector>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QSpinBox;

namespace zarvi {

/// The optional stages of the perievents view: the baseline alignment, the selection
/// of events and the resampling, each switched on by its check box, and the parameter
/// keys they stand for. GUI thread.
class PerieventOptionsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit PerieventOptionsPanel(QWidget* parent = nullptr);

    /// The file's event arrays (for baseline events) and time-period arrays.
    void setArrays(const std::vector<StoredArray>& events, const std::vector<StoredArray>& periods);
    /// The number of events of the analysed array, the range selectable by number.
    void setEventCount(int count);
    /// Adds the keys of the stages switched on.
    void addParameters(QVariantMap& parameters) const;
    /// Sets the stages from the keys addParameters wrote; the arrays named in them are
    /// chosen later, when the file's arrays are listed, if they are there.
    void restore(const QVariantMap& parameters);

    /// A combo box named `objectName` holding `items`.
    static QComboBox* comboBox(QWidget* parent, const char* objectName, const QStringList& items = {});
    /// Lists `arrays`: the name, or "name (path)" where names repeat, with the path and
    /// name as tooltip. Each entry keeps its array's index; the current text stays.
    static void fillArrays(QComboBox* box, const std::vector<StoredArray>& arrays);
    /// The index into the listed arrays of the current entry; -1 when there is none.
    static int arrayIndex(const QComboBox* box);

signals:
    /// Any control that changes the result changed.
    void changed();

private:
    QWidget* buildNormalize();
    QWidget* buildSelection();
    QWidget* buildResample();
    void onTimePeriodChanged();
    void updateEnabled();

    std::vector<StoredArray> m_events;
    std::vector<StoredArray> m_periods;
    QString m_wantedNormalizeEvent;
    QString m_wantedTimePeriod;
    QCheckBox* m_normalize;
    QDoubleSpinBox* m_normalizeStart;
    QDoubleSpinBox* m_normalizeEnd;
    QComboBox* m_normalizeMethod;
    QComboBox* m_normalizeSource;
    QComboBox* m_normalizeEvent;
    QCheckBox* m_selectEvents;
    QComboBox* m_selectOption;
    QSpinBox* m_eventFirst;
    QSpinBox* m_eventLast;
    QComboBox* m_timePeriod;
    QComboBox* m_periodName;
    QCheckBox* m_resample;
    QDoubleSpinBox* m_resampleFrequency;
    QComboBox* m_resampleMethod;
};

} // namespace zarvi
