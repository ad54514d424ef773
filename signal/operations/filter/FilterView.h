#pragma once

#include "signal/SignalOperationView.h"

#include <memory>
#include <vector>

class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QCustomPlot;

namespace zarvi {

class BackgroundJob;

/// Parameters of "Filter": the filter type and its cut-offs, checked against half the
/// sample rate beside the fields, with a preview of the first selected signal's
/// spectrum under the response of the filter as set. The spectrum is read and computed
/// by a background job; the view itself lives on the GUI thread.
class FilterView : public SignalOperationView
{
    Q_OBJECT

public:
    explicit FilterView(QWidget* parent = nullptr);
    ~FilterView() override;

    QComboBox* typeBox() const { return m_type; }
    QDoubleSpinBox* lowBox() const { return m_low; }
    QDoubleSpinBox* highBox() const { return m_high; }
    QCustomPlot* plot() const { return m_plot; }
    /// Wide and tall enough for the response plot to be read.
    QSize openingSize() const override { return {900, 640}; }
    /// Computes the spectrum preview; its finished() says when the plot has it.
    BackgroundJob* spectrumJob() const { return m_spectrumJob.get(); }

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
    std::unique_ptr<BackgroundJob> m_spectrumJob;
    /// Frequencies and magnitudes of the spectrum being computed, handed over on finish.
    std::shared_ptr<std::pair<std::vector<double>, std::vector<double>>> m_spectrum;
};

} // namespace zarvi
