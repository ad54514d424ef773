#include "signal/operations/filter/FilterView.h"

#include "definitions/SignalOperationDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/BackgroundJob.h"
#include "framework/PlotStyle.h"
#include "signal/SignalFileReader.h"
#include "signal/operations/filter/FilterDesign.h"
#include "signal/operations/filter/FilterResponse.h"
#include "signal/operations/filter/SignalSpectrum.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>

#include <qcustomplot.h>

namespace zarvi {

namespace {

using SD = SignalOperationDefinitions;

/// Points of the drawn response curve.
constexpr std::size_t responsePoints = 2000;

void setCurve(QCPGraph* graph, const std::vector<double>& x, const std::vector<double>& y)
{
    graph->setData(QVector<double>(x.begin(), x.end()), QVector<double>(y.begin(), y.end()), true);
}

} // namespace

FilterView::FilterView(QWidget* parent)
    : SignalOperationView(SD::Filter, parent),
      m_spectrumJob(std::make_unique<BackgroundJob>(ZarviMainDefinitions::previewProgressTitle()))
{
    auto* layout = new QFormLayout(this);
    m_type =
        static_cast<QComboBox*>(addParameterRow(layout, SD::FilterType, QStringLiteral("cb_filterType")));
    m_lowValidation = makeValidationLabel(QStringLiteral("lb_lowCutoffValidation"));
    m_low = static_cast<QDoubleSpinBox*>(
        addParameterRow(layout, SD::LowCutoffFrequency, QStringLiteral("dsb_lowCutoff"), m_lowValidation));
    m_highValidation = makeValidationLabel(QStringLiteral("lb_highCutoffValidation"));
    m_high = static_cast<QDoubleSpinBox*>(
        addParameterRow(layout, SD::HighCutoffFrequency, QStringLiteral("dsb_highCutoff"), m_highValidation));

    m_plot = new QCustomPlot(this);
    m_plot->setObjectName(QStringLiteral("plot_filterResponse"));
    PlotStyle::apply(m_plot);
    m_plot->setMinimumHeight(220);
    m_plot->setSizePolicy(QSizePolicy::Expanding,
                          QSizePolicy::Expanding); // takes what an enlarged dialog gains
    m_plot->xAxis->setLabel(SD::frequencyAxisLabel());
    m_plot->yAxis->setLabel(SD::amplitudeAxisLabel());
    m_plot->legend->setVisible(true);
    QCPGraph* spectrum = m_plot->addGraph();
    spectrum->setName(SD::signalFftLabel());
    spectrum->setPen(QPen(QColor(0x86, 0x84, 0x82)));
    QCPGraph* response = m_plot->addGraph();
    response->setName(SD::filterResponseLabel());
    response->setPen(QPen(QColor(0xe6, 0x7e, 0x22), 2));
    m_plot->setInteractions(QCP::iRangeDrag | QCP::iRangeZoom);
    layout->addRow(m_plot);

    const auto changed = [this] {
        m_high->setEnabled(isBand());
        validate();
        updateResponse();
    };
    connect(m_type, &QComboBox::currentIndexChanged, this, changed);
    connect(m_low, &QDoubleSpinBox::valueChanged, this, changed);
    connect(m_high, &QDoubleSpinBox::valueChanged, this, changed);
    m_high->setEnabled(isBand());
    connect(m_spectrumJob.get(), &BackgroundJob::finished, this, [this](bool canceled) {
        const auto spectrum = std::move(m_spectrum);
        if (!canceled && spectrum && !spectrum->first.empty()) {
            setCurve(m_plot->graph(0), spectrum->first, spectrum->second);
            m_plot->rescaleAxes();
            m_plot->replot(QCustomPlot::rpQueuedReplot);
        }
    });
}

FilterView::~FilterView() = default;

bool FilterView::isBand() const
{
    const QString type = m_type->currentText();
    return type == SD::BandPass || type == SD::BandStop;
}

bool FilterView::validate()
{
    const double nyquist = sampleRate() / 2.0;
    const bool known = nyquist > 0.0;
    QString lowText;
    QString highText;
    if (known && !FilterDesign::isBelowNyquist(m_low->value(), sampleRate()))
        lowText = SD::lowAboveNyquistMessage();
    if (isBand() && known && !FilterDesign::isBelowNyquist(m_high->value(), sampleRate()))
        highText = SD::highAboveNyquistMessage();
    if (isBand() && lowText.isEmpty() && m_low->value() >= m_high->value())
        lowText = SD::lowNotBelowHighMessage();
    setValidationText(m_lowValidation, lowText);
    setValidationText(m_highValidation, highText);
    return lowText.isEmpty() && highText.isEmpty();
}

void FilterView::updateResponse()
{
    QCPGraph* response = m_plot->graph(1);
    response->data()->clear();
    const double rate = sampleRate();
    if (rate > 0.0 && validate()) {
        std::vector<double> cutoffs{m_low->value()};
        if (isBand())
            cutoffs.push_back(m_high->value());
        const FilterDesign::Result design = FilterDesign::design(m_type->currentText(), cutoffs, rate);
        if (design.outcome.ok()) {
            const FilterResponse::Result curve =
                FilterResponse::compute(design.filter, rate, responsePoints, nullptr);
            setCurve(response, curve.frequencies, curve.magnitudesDb);
        }
    }
    m_plot->rescaleAxes();
    m_plot->replot(QCustomPlot::rpQueuedReplot);
}

void FilterView::datasetsChanged()
{
    SignalOperationView::datasetsChanged();
    m_plot->graph(0)->data()->clear();
    validate();
    updateResponse();
    if (datapaths().isEmpty() || m_spectrumJob->isRunning())
        return;
    // A whole signal is read and transformed, which takes long on hour-long recordings.
    auto spectrum = std::make_shared<std::pair<std::vector<double>, std::vector<double>>>();
    m_spectrum = spectrum;
    m_spectrumJob->start(
        SD::calculatingSpectrumLabel(),
        [spectrum, file = filepath(), path = datapaths().first(), rate = sampleRate()](Feedback&) {
            Signal signal;
            QString error;
            if (!SignalFileReader::read(file, path, signal, error))
                return;
            SignalSpectrum::Result fft = SignalSpectrum::compute(signal.values, rate);
            if (fft.outcome.ok())
                *spectrum = {std::move(fft.frequencies), std::move(fft.magnitudesDb)};
        });
}

bool FilterView::buildParameters(QVariantMap& parameters)
{
    if (!validate())
        return false;
    parameters.insert(SD::FilterType, m_type->currentText());
    parameters.insert(SD::LowCutoffFrequency, m_low->value());
    // A low- or high-pass filter takes the last cut-off given, so only band filters send the high one.
    if (isBand())
        parameters.insert(SD::HighCutoffFrequency, m_high->value());
    parameters.insert(SD::FilterName, SD::Butterworth);
    return true;
}

} // namespace zarvi
