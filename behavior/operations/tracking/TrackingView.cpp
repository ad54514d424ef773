#include "behavior/operations/tracking/TrackingView.h"

#include "behavior/VideoLink.h"
#include "behavior/operations/tracking/TrackingPreview.h"
#include "definitions/VideoOperationDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/LockedFileRead.h"
#include "framework/OperationParameter.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

namespace zarvi {

using VD = VideoOperationDefinitions;

namespace {

QDoubleSpinBox* percentBox(const QString& objectName, QWidget* parent)
{
    auto* box = new QDoubleSpinBox(parent);
    box->setObjectName(objectName);
    box->setRange(0.0, 100.0);
    box->setDecimals(1);
    box->setSuffix(QStringLiteral(" %"));
    return box;
}

QSpinBox* hueBox(const QString& objectName, QWidget* parent)
{
    auto* box = new QSpinBox(parent);
    box->setObjectName(objectName);
    box->setRange(0, 180);
    return box;
}

QSpinBox* frameBox(const QString& objectName, const QString& tooltip, QWidget* parent)
{
    auto* box = new QSpinBox(parent);
    box->setObjectName(objectName);
    box->setToolTip(tooltip);
    return box;
}

void setBound(QAbstractSpinBox* box, double value)
{
    if (auto* whole = qobject_cast<QSpinBox*>(box))
        whole->setValue(static_cast<int>(value));
    else
        static_cast<QDoubleSpinBox*>(box)->setValue(value);
}

} // namespace

TrackingView::TrackingView(QWidget* parent) : AbstractOperationView(VD::AnimalTracking, parent)
{
    auto* layout = new QHBoxLayout(this);
    auto* fields = new QWidget(this);
    fields->setObjectName(QStringLiteral("w_parameters"));
    fields->setMinimumWidth(340);
    fields->setMaximumWidth(440);
    auto* column = new QVBoxLayout(fields);
    column->setContentsMargins(0, 0, 0, 0);

    auto* warning = new QLabel(VD::contrastWarning(), this);
    warning->setObjectName(QStringLiteral("lb_contrastWarning"));
    warning->setWordWrap(true);
    warning->setStyleSheet(QStringLiteral("color: %1;").arg(ZarviMainDefinitions::ColorBlue));
    column->addWidget(warning);

    auto* thresholdBox = new QGroupBox(VD::thresholdsTitle(), this);
    thresholdBox->setObjectName(QStringLiteral("gb_thresholds"));
    auto* thresholdForm = new QFormLayout(thresholdBox);
    cb_convertToGrayscale = static_cast<QCheckBox*>(
        addParameterRow(thresholdForm, VD::ConvertToGrayscale, QStringLiteral("cb_convertToGrayscale")));
    sb_hueLow = hueBox(QStringLiteral("sb_hueLow"), this);
    sb_hueHigh = hueBox(QStringLiteral("sb_hueHigh"), this);
    addRangeRow(thresholdForm, VD::HueRange, VD::hueRangeTooltip(), VD::hueScaleHint(), sb_hueLow,
                sb_hueHigh);
    dsb_saturationLow = percentBox(QStringLiteral("dsb_saturationLow"), this);
    dsb_saturationHigh = percentBox(QStringLiteral("dsb_saturationHigh"), this);
    addRangeRow(thresholdForm, VD::SaturationRange, VD::saturationRangeTooltip(), VD::saturationScaleHint(),
                dsb_saturationLow, dsb_saturationHigh);
    dsb_valueLow = percentBox(QStringLiteral("dsb_valueLow"), this);
    dsb_valueHigh = percentBox(QStringLiteral("dsb_valueHigh"), this);
    addRangeRow(thresholdForm, VD::ValueRange, VD::valueRangeTooltip(), VD::valueScaleHint(), dsb_valueLow,
                dsb_valueHigh);
    tb_resetParameters = new QToolButton(this);
    tb_resetParameters->setObjectName(QStringLiteral("tb_resetParameters"));
    tb_resetParameters->setText(VD::resetParametersLabel());
    tb_resetParameters->setToolTip(VD::resetParametersTooltip());
    thresholdForm->addRow(tb_resetParameters);
    column->addWidget(thresholdBox);

    auto* segmentBox = new QGroupBox(VD::frameRangeTitle(), this);
    segmentBox->setObjectName(QStringLiteral("gb_frameRange"));
    auto* segmentForm = new QFormLayout(segmentBox);
    sb_firstFrame = frameBox(QStringLiteral("sb_firstFrame"), VD::firstFrameTooltip(), this);
    sb_lastFrame = frameBox(QStringLiteral("sb_lastFrame"), VD::lastFrameTooltip(), this);
    segmentForm->addRow(VD::firstFrameLabel(), sb_firstFrame);
    segmentForm->addRow(VD::lastFrameLabel(), sb_lastFrame);
    column->addWidget(segmentBox);

    auto* coordinatesBox = new QGroupBox(VD::coordinatesTitle(), this);
    coordinatesBox->setObjectName(QStringLiteral("gb_coordinates"));
    auto* coordinatesForm = new QFormLayout(coordinatesBox);
    cb_detectOutliers = static_cast<QCheckBox*>(
        addParameterRow(coordinatesForm, VD::DetectOutliers, QStringLiteral("cb_detectOutliers")));
    cb_interpolate = static_cast<QCheckBox*>(
        addParameterRow(coordinatesForm, VD::Interpolate, QStringLiteral("cb_interpolate")));
    sb_animalSize = static_cast<QSpinBox*>(
        addParameterRow(coordinatesForm, VD::AnimalSize, QStringLiteral("sb_animalSize")));
    cb_smoothCoordinates = static_cast<QCheckBox*>(
        addParameterRow(coordinatesForm, VD::SmoothCoordinates, QStringLiteral("cb_smoothCoordinates")));
    sb_smoothWindow = static_cast<QSpinBox*>(
        addParameterRow(coordinatesForm, VD::SmoothWindow, QStringLiteral("sb_smoothWindow")));
    column->addWidget(coordinatesBox);

    lb_validation = makeValidationLabel(QStringLiteral("lb_validation"));
    column->addWidget(lb_validation);
    column->addStretch(1);

    m_preview = new TrackingPreview(this);
    m_preview->setObjectName(QStringLiteral("w_preview"));
    layout->addWidget(fields);
    layout->addWidget(m_preview, 1);

    const auto thresholdsChanged = [this] {
        updateStates();
        m_preview->setThresholds(thresholds());
    };
    connect(cb_convertToGrayscale, &QCheckBox::toggled, this, thresholdsChanged);
    for (QSpinBox* box : {sb_hueLow, sb_hueHigh})
        connect(box, &QSpinBox::valueChanged, this, thresholdsChanged);
    for (QDoubleSpinBox* box : {dsb_saturationLow, dsb_saturationHigh, dsb_valueLow, dsb_valueHigh})
        connect(box, &QDoubleSpinBox::valueChanged, this, thresholdsChanged);
    connect(cb_detectOutliers, &QCheckBox::toggled, this, &TrackingView::updateStates);
    connect(cb_smoothCoordinates, &QCheckBox::toggled, this, &TrackingView::updateStates);
    connect(tb_resetParameters, &QToolButton::clicked, this, [this] { setRanges(false); });
    connect(m_preview, &TrackingPreview::animalSizeEstimated, sb_animalSize, &QSpinBox::setValue);
    updateStates();
    setRanges(true);
}

void TrackingView::addRangeRow(QFormLayout* form, const QString& key, const QString& tooltip,
                               const QString& hint, QAbstractSpinBox* low, QAbstractSpinBox* high)
{
    auto* row = new QWidget(this);
    auto* boxes = new QHBoxLayout(row);
    boxes->setContentsMargins(0, 0, 0, 0);
    boxes->addWidget(new QLabel(VD::lowLabel(), row));
    boxes->addWidget(low, 1);
    boxes->addWidget(new QLabel(VD::highLabel(), row));
    boxes->addWidget(high, 1);
    for (QWidget* widget : {static_cast<QWidget*>(low), static_cast<QWidget*>(high), row})
        widget->setToolTip(tooltip);
    auto* label = new QLabel(declaration(key).label, this);
    label->setToolTip(tooltip);
    form->addRow(label, row);
    auto* scale = new QLabel(hint, this);
    scale->setWordWrap(true);
    scale->setEnabled(false);
    form->addRow(QString(), scale);
}

void TrackingView::setRanges(bool remembered)
{
    const QList<std::pair<QString, std::pair<QAbstractSpinBox*, QAbstractSpinBox*>>> ranges{
        {VD::HueRange, {sb_hueLow, sb_hueHigh}},
        {VD::SaturationRange, {dsb_saturationLow, dsb_saturationHigh}},
        {VD::ValueRange, {dsb_valueLow, dsb_valueHigh}}};
    for (const auto& [key, boxes] : ranges) {
        QVariantList bounds = remembered ? rememberedParameters().value(key).toList() : QVariantList();
        if (bounds.size() != 2)
            bounds = declaration(key).defaultValue.toList();
        // One preview for all the fields, below.
        const QSignalBlocker lowBlock(boxes.first);
        const QSignalBlocker highBlock(boxes.second);
        setBound(boxes.first, bounds[0].toDouble());
        setBound(boxes.second, bounds[1].toDouble());
    }
    m_preview->setThresholds(thresholds());
}

ThresholdSettings TrackingView::thresholds() const
{
    ThresholdSettings settings;
    settings.value = ThresholdRange{dsb_valueLow->value(), dsb_valueHigh->value()};
    if (!cb_convertToGrayscale->isChecked()) {
        settings.hue = ThresholdRange{double(sb_hueLow->value()), double(sb_hueHigh->value())};
        settings.saturation = ThresholdRange{dsb_saturationLow->value(), dsb_saturationHigh->value()};
    }
    return settings;
}

void TrackingView::updateStates()
{
    const bool colour = !cb_convertToGrayscale->isChecked();
    for (QWidget* box : {static_cast<QWidget*>(sb_hueLow), static_cast<QWidget*>(sb_hueHigh),
                         static_cast<QWidget*>(dsb_saturationLow), static_cast<QWidget*>(dsb_saturationHigh)})
        box->setEnabled(colour);
    sb_animalSize->setEnabled(cb_detectOutliers->isChecked());
    sb_smoothWindow->setEnabled(cb_smoothCoordinates->isChecked());
}

void TrackingView::datasetsChanged()
{
    m_linkProblem.clear();
    if (datapaths().isEmpty())
        return;
    LockedFileRead read(filepath());
    if (!read.isOpen()) {
        // A busy file is read again by the process; only a real problem refuses the view.
        if (!read.isBusy())
            m_linkProblem = read.error();
        return;
    }
    VideoLink link;
    if (!VideoLink::read(read.reader(), filepath(), datapaths().first(), link, m_linkProblem))
        return;
    const int last = std::max(0, static_cast<int>(link.time.size()) - 1);
    for (QSpinBox* box : {sb_firstFrame, sb_lastFrame})
        box->setRange(0, last);
    sb_firstFrame->setValue(0);
    sb_lastFrame->setValue(last);
    m_preview->setVideo(link.videoPath, static_cast<int>(link.time.size()));
}

bool TrackingView::buildParameters(QVariantMap& parameters)
{
    setValidationText(lb_validation, QString());
    const ThresholdSettings settings = thresholds();
    const QList<std::pair<QString, std::optional<ThresholdRange>>> ranges{
        {VD::HueRange, settings.hue},
        {VD::SaturationRange, settings.saturation},
        {VD::ValueRange, settings.value}};
    for (const auto& [key, range] : ranges) {
        if (range && range->low > range->high) {
            setValidationText(lb_validation,
                              VD::emptyRangeMessage().arg(key).arg(range->low).arg(range->high));
            return false;
        }
        if (range)
            parameters.insert(key, QVariantList{range->low, range->high});
    }
    if (sb_firstFrame->value() > sb_lastFrame->value()) {
        setValidationText(lb_validation, VD::frameOrderMessage());
        return false;
    }
    parameters.insert(VD::ConvertToGrayscale, cb_convertToGrayscale->isChecked() ? 1 : 0);
    parameters.insert(VD::FirstFrame, sb_firstFrame->value());
    parameters.insert(VD::LastFrame, sb_lastFrame->value());
    parameters.insert(VD::DetectOutliers, cb_detectOutliers->isChecked() ? 1 : 0);
    parameters.insert(VD::Interpolate, cb_interpolate->isChecked() ? 1 : 0);
    if (cb_detectOutliers->isChecked())
        parameters.insert(VD::AnimalSize, sb_animalSize->value());
    parameters.insert(VD::SmoothCoordinates, cb_smoothCoordinates->isChecked() ? 1 : 0);
    if (cb_smoothCoordinates->isChecked())
        parameters.insert(VD::SmoothWindow, sb_smoothWindow->value());
    return true;
}

} // namespace zarvi
