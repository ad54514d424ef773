#pragma once

#include "signal/SignalOperationView.h"

#include <vector>

class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QCustomPlot;

namespace zarvi {

/// Parameters of "Filter": the filter type and its cut-offs, checked against half the
/// sample rate beside the fields, with a preview of the first selected signal's
/// spectrum under the response of the filter as set. GUI thread.
class FilterView : public SignalOperationView
{
    Q_OBJECT

public:
    explicit FilterView(QWidget* parent = nullptr);

    QComboBox* typeBox() const { return m_type; }
    QDoubleSpinBox* lowBox() const { return m_low; }
    QDoubleSpinBox* highBox() const { return m_high; }
    QCustomPlot* plot() const { return m_plot; }

protected:
    bool buildParameters(QVariantMap& parameters) override;
    void datasetsChanged() override;

private:
    bool isBand() const;
    /// Updates the texts beside the fields; true when the cut-offs are consistent.
    bool validate();
    /// Redraws the filter response for the fields as they are (nothing while invalid).
    void updateResponse();

    QComboBox* m_type;
    QDoubleSpinBox* m_low;
    QDoubleSpinBox* m_high;
    QLabel* m_lowValidation;
    QLabel* m_highValidation;
    QCustomPlot* m_plot;
};

} // namespace zarvi
