#include "signal/operations/photometry/PhotometryDeltaFView.h"

#include "definitions/SignalOperationDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/BackgroundJob.h"
#include "framework/ParameterField.h"
#include "signal/SignalFileReader.h"
#include "signal/operations/photometry/PhotometryPairs.h"
#include "signal/operations/photometry/PhotometryPreviewPlots.h"
#include "signal/operations/slope/PolynomialBaseline.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

#include <limits>

namespace zarvi {

namespace {

using SD = SignalOperationDefinitions;

QDoubleSpinBox* doubleBox(QWidget* parent, const QString& objectName, double low, double high, double value,
                          int decimals = 3)
{
    auto* box = new QDoubleSpinBox(parent);
    box->setObjectName(objectName);
    box->setDecimals(decimals);
    box->setRange(low, high);
    box->setValue(value);
    return box;
}

QSpinBox* intBox(QWidget* parent, const QString& objectName, int low, int high, int value)
{
    auto* box = new QSpinBox(parent);
    box->setObjectName(objectName);
    box->setRange(low, high);
    box->setValue(value);
    return box;
}

QCheckBox* checkBox(QWidget* parent, const QString& objectName, const QString& text, bool checked)
{
    auto* box = new QCheckBox(text, parent);
    box->setObjectName(objectName);
    box->setChecked(checked);
    return box;
}

QComboBox* comboBox(QWidget* parent, const QString& objectName, const QStringList& items = {})
{
    auto* box = new QComboBox(parent);
    box->setObjectName(objectName);
    box->addItems(items);
    return box;
}

/// The sensor name a new list should start on: the first one `prefer` says yes to, else the first.
QString pick(const QStringList& names, const std::function<bool(const QString&)>& prefer)
{
    for (const QString& name : names)
        if (prefer(name))
            return name;
    return names.value(0);
}

} // namespace

/// What the preview computation hands back to the GUI thread.
struct PhotometryDeltaFView::PreviewOutput
{
    bool read = false;
    QString readError;
    bool standardized = false;
    PhotometryDeltaF::Result result;
};

PhotometryDeltaFView::PhotometryDeltaFView(QWidget* parent)
    : SignalOperationView(SD::PhotometryDeltaF, parent),
      m_preview(std::make_unique<BackgroundJob>(ZarviMainDefinitions::previewProgressTitle()))
{
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(buildStages());
    restoreLastRun();
    m_plots = new PhotometryPreviewPlots(this);
    layout->addWidget(m_plots, 1);

    connect(m_preview.get(), &BackgroundJob::finished, this, [this](bool canceled) {
        const std::shared_ptr<PreviewOutput> output = std::move(m_previewOutput);
        if (!canceled && output && output->read) {
            for (const QString& warning : m_preview->warnings())
                showMessage(ZarviMainDefinitions::warningOperationTitle(), warning, QString(),
                            QMessageBox::Warning);
            if (output->result.outcome.isFailed())
                showMessage(ZarviMainDefinitions::errorOperationTitle(), output->result.outcome.error,
                            QString(), QMessageBox::Critical);
            else if (output->result.outcome.ok())
                showFit(output->result, output->standardized);
        }
        emit previewFinished();
    });
}

PhotometryDeltaFView::~PhotometryDeltaFView() = default;

QWidget* PhotometryDeltaFView::buildStages()
{
    auto* panel = new QWidget(this);
    auto* form = new QFormLayout(panel);

    m_isosbesticName = comboBox(panel, QStringLiteral("cb_isosbesticName"));
    m_isosbesticName->setEditable(true);
    m_isosbesticName->setToolTip(SD::isosbesticNameTooltip());
    form->addRow(SD::isosbesticNameLabel(), m_isosbesticName);
    m_biosensorName = comboBox(panel, QStringLiteral("cb_biosensorName"));
    m_biosensorName->setEditable(true);
    m_biosensorName->setToolTip(SD::biosensorNameTooltip());
    form->addRow(SD::biosensorNameLabel(), m_biosensorName);

    m_discardStartCheck = checkBox(panel, QStringLiteral("cb_discardStart"), SD::discardStartLabel(), false);
    m_discardStart = doubleBox(panel, QStringLiteral("dsb_discardStart"), 0.0, 1e6, 1.0);
    for (QWidget* w : {static_cast<QWidget*>(m_discardStartCheck), static_cast<QWidget*>(m_discardStart)})
        w->setToolTip(SD::discardStartTooltip());
    form->addRow(m_discardStartCheck, m_discardStart);
    m_discardEndCheck = checkBox(panel, QStringLiteral("cb_discardEnd"), SD::discardEndLabel(), false);
    m_discardEnd = doubleBox(panel, QStringLiteral("dsb_discardEnd"), -1e6, 0.0, -1.0);
    for (QWidget* w : {static_cast<QWidget*>(m_discardEndCheck), static_cast<QWidget*>(m_discardEnd)})
        w->setToolTip(SD::discardEndTooltip());
    form->addRow(m_discardEndCheck, m_discardEnd);

    m_decimationCheck = checkBox(panel, QStringLiteral("cb_decimation"), SD::decimationLabel(), false);
    m_decimationFactor = intBox(panel, QStringLiteral("sb_decimationFactor"), 1, 1000000, 10);
    for (QWidget* w : {static_cast<QWidget*>(m_decimationCheck), static_cast<QWidget*>(m_decimationFactor)})
        w->setToolTip(SD::decimationFactorTooltip());
    form->addRow(m_decimationCheck, m_decimationFactor);

    m_smoothCheck = checkBox(panel, QStringLiteral("cb_smooth"), SD::smoothingLabel(), false);
    m_smoothMethod = comboBox(panel, QStringLiteral("cb_smoothMethod"),
                              {SD::RunningAverage, SD::LowPassButterworthFilter});
    form->addRow(m_smoothCheck, m_smoothMethod);
    m_smoothTimeFrame = doubleBox(panel, QStringLiteral("dsb_smoothTimeFrame"), 0.0001, 1e5, 0.1, 4);
    form->addRow(SD::smoothTimeFrameLabel(), m_smoothTimeFrame);
    m_smoothFrequency = doubleBox(panel, QStringLiteral("dsb_smoothFrequency"), 0.001, 1e6, 10.0);
    form->addRow(SD::smoothFrequencyLabel(), m_smoothFrequency);
    m_smoothNote = makeValidationLabel(QStringLiteral("lb_smoothFrequencyValidation"));
    form->addRow(m_smoothNote);

    m_slopeCheck = checkBox(panel, QStringLiteral("cb_removeSlope"), SD::removeSlopeLabel(), false);
    m_slopeMethod =
        comboBox(panel, QStringLiteral("cb_slopeMethod"), {SD::Arpls, SD::RunningAverage, SD::Polynomial});
    form->addRow(m_slopeCheck, m_slopeMethod);
    m_slopeLambda =
        intBox(panel, QStringLiteral("sb_slopeLambda"), 1, std::numeric_limits<int>::max(), 100000);
    form->addRow(SD::slopeLambdaLabel(), m_slopeLambda);
    m_slopeRatio = doubleBox(panel, QStringLiteral("dsb_slopeRatio"), 1e-6, 1.0, 0.01, 6);
    form->addRow(SD::slopeRatioLabel(), m_slopeRatio);
    m_slopeTimeWindow = doubleBox(panel, QStringLiteral("dsb_slopeTimeWindow"), 0.001, 1e5, 30.0);
    form->addRow(SD::slopeTimeWindowLabel(), m_slopeTimeWindow);
    m_slopeOrder = intBox(panel, QStringLiteral("sb_slopeOrder"), 0, PolynomialBaseline::MaxOrder, 2);
    m_slopeOrder->setToolTip(SD::slopeOrderTooltip());
    form->addRow(SD::slopeOrderLabel(), m_slopeOrder);

    m_standardizeCheck = checkBox(panel, QStringLiteral("cb_standardize"), SD::standardizeLabel(), true);
    m_standardizeCheck->setToolTip(SD::standardizeTooltip());
    m_standardizeMethod =
        comboBox(panel, QStringLiteral("cb_standardizeMethod"), {SD::StandardZScore, SD::ModifiedZScore});
    form->addRow(m_standardizeCheck, m_standardizeMethod);

    // Raw signals in volts need thresholds far below 1, hence the many decimals.
    m_residualThreshold = doubleBox(panel, QStringLiteral("dsb_residualThreshold"), 0.0, 1e9, 0.5, 8);
    m_residualThreshold->setToolTip(SD::residualThresholdTooltip());
    m_proposeThreshold = new QToolButton(panel);
    m_proposeThreshold->setObjectName(QStringLiteral("tb_proposeThreshold"));
    m_proposeThreshold->setText(SD::proposeThresholdText());
    m_proposeThreshold->setToolTip(SD::proposeThresholdTooltip());
    m_proposeThreshold->setEnabled(false);
    connect(m_proposeThreshold, &QToolButton::clicked, this,
            [this] { m_residualThreshold->setValue(m_proposedThreshold); });
    auto* thresholdRow = new QHBoxLayout;
    thresholdRow->addWidget(m_residualThreshold, 1);
    thresholdRow->addWidget(m_proposeThreshold);
    form->addRow(SD::residualThresholdLabel(), thresholdRow);
    m_inliers = new QLabel(panel);
    m_inliers->setObjectName(QStringLiteral("lb_inliers"));
    m_inliers->setWordWrap(true);
    form->addRow(m_inliers);

    m_previewSignal = comboBox(panel, QStringLiteral("cb_previewSignal"));
    m_previewSignal->setToolTip(SD::previewSignalTooltip());
    auto* previewButton = new QToolButton(panel);
    previewButton->setObjectName(QStringLiteral("tb_preview"));
    previewButton->setText(SD::previewButtonText());
    auto* previewRow = new QHBoxLayout;
    previewRow->addWidget(m_previewSignal, 1);
    previewRow->addWidget(previewButton);
    form->addRow(SD::previewSignalLabel(), previewRow);
    connect(previewButton, &QToolButton::clicked, this, [this] { requestPreview(); });

    // Each stage's fields follow its check box and, where it has several, its method.
    const auto enableFields = [this] {
        m_discardStart->setEnabled(m_discardStartCheck->isChecked());
        m_discardEnd->setEnabled(m_discardEndCheck->isChecked());
        m_decimationFactor->setEnabled(m_decimationCheck->isChecked());
        const bool smooth = m_smoothCheck->isChecked();
        const bool average = m_smoothMethod->currentText() == SD::RunningAverage;
        m_smoothMethod->setEnabled(smooth);
        m_smoothTimeFrame->setEnabled(smooth && average);
        m_smoothFrequency->setEnabled(smooth && !average);
        const bool slope = m_slopeCheck->isChecked();
        const QString method = m_slopeMethod->currentText();
        m_slopeMethod->setEnabled(slope);
        m_slopeLambda->setEnabled(slope && method == SD::Arpls);
        m_slopeRatio->setEnabled(slope && method == SD::Arpls);
        m_slopeTimeWindow->setEnabled(slope && method == SD::RunningAverage);
        m_slopeOrder->setEnabled(slope && method == SD::Polynomial);
        m_standardizeMethod->setEnabled(m_standardizeCheck->isChecked());
        updateSmoothingNote();
    };
    for (QCheckBox* box : {m_discardStartCheck, m_discardEndCheck, m_decimationCheck, m_smoothCheck,
                           m_slopeCheck, m_standardizeCheck})
        connect(box, &QCheckBox::toggled, this, enableFields);
    for (QComboBox* box : {m_smoothMethod, m_slopeMethod})
        connect(box, &QComboBox::currentIndexChanged, this, enableFields);
    connect(m_decimationFactor, &QSpinBox::valueChanged, this, [this] { updateSmoothingNote(); });
    connect(m_smoothFrequency, &QDoubleSpinBox::valueChanged, this, [this] { updateSmoothingNote(); });
    for (QComboBox* box : {m_isosbesticName, m_biosensorName})
        connect(box, &QComboBox::currentTextChanged, this, [this] { updatePreviewChoices(); });
    enableFields();
    return panel;
}

void PhotometryDeltaFView::datasetsChanged()
{
    SignalOperationView::datasetsChanged();
    // A partner need not be selected: the sensors beside the selected ones are offered too.
    const QStringList sensors = SignalFileReader::recordingSensors(filepath(), datapaths());
    const QString isosbestic = pick(sensors, [](const QString& name) {
        return name.contains(QStringLiteral("iso"), Qt::CaseInsensitive);
    });
    const QString biosensor = pick(sensors, [&](const QString& name) { return name != isosbestic; });
    for (QComboBox* box : {m_isosbesticName, m_biosensorName}) {
        const QSignalBlocker blocker(box);
        box->clear();
        box->addItems(sensors);
    }
    m_isosbesticName->setCurrentText(isosbestic);
    m_biosensorName->setCurrentText(biosensor);
    updatePreviewChoices();
    updateSmoothingNote();
}

void PhotometryDeltaFView::updatePreviewChoices()
{
    const QString isosbestic = m_isosbesticName->currentText();
    const QString biosensor = m_biosensorName->currentText();
    QStringList partners;
    for (const QString& path : datapaths())
        if (PhotometryPairs::sensorOf(path) == isosbestic)
            partners << PhotometryPairs::withSensor(path, biosensor);
    const QStringList existingPartners =
        partners.isEmpty() ? QStringList() : SignalFileReader::existing(filepath(), partners);
    // Selected biosensor signals first, then the biosensor partners of selected isosbestic signals.
    QStringList choices;
    for (const QString& path : datapaths())
        if (PhotometryPairs::sensorOf(path) == biosensor && !choices.contains(path))
            choices << path;
    for (const QString& path : existingPartners)
        if (!choices.contains(path))
            choices << path;
    const QString previous = m_previewSignal->currentText();
    m_previewSignal->clear();
    m_previewSignal->addItems(choices);
    if (choices.contains(previous))
        m_previewSignal->setCurrentText(previous);
}

void PhotometryDeltaFView::updateSmoothingNote()
{
    const double factor = m_decimationCheck->isChecked() ? m_decimationFactor->value() : 1.0;
    const double decimatedRate = sampleRate() / factor;
    const bool lowPass =
        m_smoothCheck->isChecked() && m_smoothMethod->currentText() == SD::LowPassButterworthFilter;
    const bool tooHigh =
        lowPass && decimatedRate > 0.0 &&
        PhotometryDeltaF::isSmoothingCutoffTooHigh(m_smoothFrequency->value(), decimatedRate);
    setValidationText(m_smoothNote,
                      tooHigh ? SD::smoothingCutoffTooHighMessage().arg(SD::SmoothSignals) : QString());
}

QString PhotometryDeltaFView::selectionProblem() const
{
    return m_isosbesticName->count() < 2 ? SD::notFiberPhotometryMessage() : QString();
}

bool PhotometryDeltaFView::namesAreUsable()
{
    const QString isosbestic = m_isosbesticName->currentText();
    const QString biosensor = m_biosensorName->currentText();
    if (!isosbestic.isEmpty() && !biosensor.isEmpty() && isosbestic != biosensor)
        return true;
    showMessage(SD::notFiberPhotometryTitle(), SD::notFiberPhotometryMessage(), QString(),
                QMessageBox::Critical);
    return false;
}

void PhotometryDeltaFView::restoreLastRun()
{
    const QVariantMap& last = rememberedParameters();
    if (last.isEmpty())
        return;
    // A stage the last run left out stays off; its fields keep their defaults.
    const std::pair<QCheckBox*, QString> stages[] = {
        {m_discardStartCheck, SD::DiscardStart},   {m_discardEndCheck, SD::DiscardEnd},
        {m_decimationCheck, SD::DecimationFactor}, {m_smoothCheck, SD::SmoothMethod},
        {m_slopeCheck, SD::RemoveSlopeMethod},     {m_standardizeCheck, SD::StandardizeMethod}};
    for (const auto& [check, key] : stages)
        check->setChecked(last.contains(key));
    const std::pair<QWidget*, QString> fields[] = {{m_discardStart, SD::DiscardStart},
                                                   {m_discardEnd, SD::DiscardEnd},
                                                   {m_decimationFactor, SD::DecimationFactor},
                                                   {m_smoothMethod, SD::SmoothMethod},
                                                   {m_smoothTimeFrame, SD::SmoothTimeFrame},
                                                   {m_smoothFrequency, SD::SmoothFrequency},
                                                   {m_slopeMethod, SD::RemoveSlopeMethod},
                                                   {m_slopeLambda, SD::SlopeLambda},
                                                   {m_slopeRatio, SD::SlopeRatio},
                                                   {m_slopeTimeWindow, SD::SlopeTimeWindow},
                                                   {m_slopeOrder, SD::SlopeOrder},
                                                   {m_standardizeMethod, SD::StandardizeMethod},
                                                   {m_residualThreshold, SD::ResidualThreshold}};
    for (const auto& [field, key] : fields)
        if (last.contains(key))
            ParameterField::setValue(field, last.value(key));
}

QVariantMap PhotometryDeltaFView::stageParameters() const
{
    QVariantMap parameters;
    parameters.insert(SD::IsosbesticName, m_isosbesticName->currentText());
    parameters.insert(SD::BiosensorName, m_biosensorName->currentText());
    if (m_discardStartCheck->isChecked())
        parameters.insert(SD::DiscardStart, m_discardStart->value());
    if (m_discardEndCheck->isChecked())
        parameters.insert(SD::DiscardEnd, m_discardEnd->value());
    if (m_decimationCheck->isChecked())
        parameters.insert(SD::DecimationFactor, m_decimationFactor->value());
    if (m_smoothCheck->isChecked()) {
        const QString method = m_smoothMethod->currentText();
        parameters.insert(SD::SmoothMethod, method);
        if (method == SD::RunningAverage)
            parameters.insert(SD::SmoothTimeFrame, m_smoothTimeFrame->value());
        else
            parameters.insert(SD::SmoothFrequency, m_smoothFrequency->value());
    }
    if (m_slopeCheck->isChecked()) {
        const QString method = m_slopeMethod->currentText();
        parameters.insert(SD::RemoveSlopeMethod, method);
        if (method == SD::Arpls) {
            parameters.insert(SD::SlopeLambda, m_slopeLambda->value());
            parameters.insert(SD::SlopeRatio, m_slopeRatio->value());
        } else if (method == SD::RunningAverage) {
            parameters.insert(SD::SlopeTimeWindow, m_slopeTimeWindow->value());
        } else {
            parameters.insert(SD::SlopeOrder, m_slopeOrder->value());
        }
    }
    if (m_standardizeCheck->isChecked())
        parameters.insert(SD::StandardizeMethod, m_standardizeMethod->currentText());
    parameters.insert(SD::ResidualThreshold, m_residualThreshold->value());
    return parameters;
}

bool PhotometryDeltaFView::buildParameters(QVariantMap& parameters)
{
    if (!namesAreUsable())
        return false;
    parameters = stageParameters();
    return true;
}

void PhotometryDeltaFView::showFit(const PhotometryDeltaF::Result& result, bool standardized)
{
    m_plots->show(result, standardized);
    const std::size_t n = result.biosensorForFit.size();
    m_proposedThreshold = RansacLineFit::proposedThreshold(result.isosbesticForFit, result.biosensorForFit);
    m_proposeThreshold->setEnabled(n > 1);
    const double percent =
        n > 0 ? 100.0 * static_cast<double>(result.fit.inlierCount) / static_cast<double>(n) : 0.0;
    m_inliers->setText(SD::inlierFractionText()
                           .arg(QString::number(percent, 'f', 1))
                           .arg(n)
                           .arg(QString::number(m_proposedThreshold, 'g', 4)));
}

bool PhotometryDeltaFView::requestPreview()
{
    if (m_preview->isRunning() || !namesAreUsable())
        return false;
    const QString biosensorPath = m_previewSignal->currentText();
    if (biosensorPath.isEmpty()) {
        showMessage(SD::notFiberPhotometryTitle(), SD::notFiberPhotometryMessage(), QString(),
                    QMessageBox::Critical);
        return false;
    }
    const QString isosbesticPath =
        PhotometryPairs::withSensor(biosensorPath, m_isosbesticName->currentText());
    if (!datapaths().contains(isosbesticPath) &&
        SignalFileReader::existing(filepath(), {isosbesticPath}).isEmpty()) {
        showMessage(SD::noIsosbesticSignalTitle(), SD::noIsosbesticSignalMessage().arg(biosensorPath),
                    QString(), QMessageBox::Critical);
        return false;
    }

    const QVariantMap parameters = stageParameters();
    PhotometryDeltaF::Config config = PhotometryDeltaF::Config::fromParameters(ParameterValues(parameters));
    config.keepPreviewData = true;
    auto output = std::make_shared<PreviewOutput>();
    output->standardized = !config.standardizeMethod.isEmpty();
    m_previewOutput = output;
    const QString file = filepath();
    return m_preview->start(QString(), [output, config, file, isosbesticPath,
                                        biosensorPath](Feedback& feedback) {
        std::vector<Signal> loaded;
        output->read =
            SignalFileReader::read(file, {isosbesticPath, biosensorPath}, loaded, output->readError);
        // Without both signals there is nothing to draw.
        if (!output->read)
            return;
        output->result =
            PhotometryDeltaF::compute(config, {std::move(loaded[0].values), std::move(loaded[0].time)},
                                      {std::move(loaded[1].values), std::move(loaded[1].time)}, &feedback);
    });
}

} // namespace zarvi
