#include "behavior/operations/measures/MeasuresView.h"

#include "behavior/CoordinatesDataset.h"
#include "definitions/BehaviorViewDefinitions.h"
#include "definitions/FileDefinitions.h"
#include "framework/LockedFileRead.h"
#include "framework/OperationParameter.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace zarvi {

namespace {

using BD = BehaviorViewDefinitions;
using FD = FileDefinitions;

/// The link of the video the coordinates were tracked on: same relative path, else same
/// file name; the first link when none matches.
int linkOfCoordinates(const std::vector<VideoLink>& links, const QString& trackedVideo)
{
    for (std::size_t i = 0; i < links.size(); ++i)
        if (!trackedVideo.isEmpty() && links[i].relativeFilePath == trackedVideo)
            return static_cast<int>(i);
    const QString name = QFileInfo(trackedVideo).fileName();
    for (std::size_t i = 0; i < links.size(); ++i)
        if (!name.isEmpty() && QFileInfo(links[i].relativeFilePath).fileName() == name)
            return static_cast<int>(i);
    return links.empty() ? -1 : 0;
}

} // namespace

MeasuresView::MeasuresView(QWidget* parent) : AbstractOperationView(BD::MeasuresOperation, parent)
{
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    layout->addLayout(form);
    m_link = new QComboBox(this);
    m_link->setObjectName(QStringLiteral("cb_videoLink"));
    m_link->setToolTip(BD::regionsFromTooltip());
    form->addRow(BD::regionsFromLabel(), m_link);
    m_summary = new QLabel(this);
    m_summary->setObjectName(QStringLiteral("lb_regions"));
    m_summary->setTextFormat(Qt::RichText);
    form->addRow(m_summary);
    m_arenaValidation = makeValidationLabel(QStringLiteral("lb_arenaValidation"));
    form->addRow(m_arenaValidation);

    const OperationParameter& bin = declaration(BD::TimeBin);
    m_binned = new QCheckBox(BD::timeBinsLabel(), this);
    m_binned->setObjectName(QStringLiteral("cb_timeBins"));
    m_timeBin = new QDoubleSpinBox(this);
    m_timeBin->setObjectName(QStringLiteral("dsb_timeBin"));
    m_timeBin->setToolTip(bin.tooltip);
    m_timeBin->setRange(0.1, 86400.0);
    m_timeBin->setDecimals(1);
    m_timeBin->setSuffix(QStringLiteral(" s"));
    const QVariant last = rememberedParameters().value(BD::TimeBin);
    m_binned->setChecked(last.isValid());
    m_timeBin->setValue(last.isValid() ? last.toDouble() : bin.defaultValue.toDouble());
    m_timeBin->setEnabled(m_binned->isChecked());
    form->addRow(m_binned, m_timeBin);
    layout->addStretch(1);

    connect(m_binned, &QCheckBox::toggled, m_timeBin, &QWidget::setEnabled);
    connect(m_link, &QComboBox::currentIndexChanged, this, [this] { readRegions(); });
}

void MeasuresView::datasetsChanged()
{
    QString trackedVideo;
    {
        LockedFileRead read(filepath());
        if (!read.isOpen())
            return;
        const std::vector<DataFileNode> nodes = DataFileTree::collect(read.reader());
        m_links = VideoLink::find(nodes);
        for (const DataFileNode& node : nodes)
            if (!datapaths().isEmpty() && node.path == datapaths().first())
                trackedVideo = node.attributes.value(FD::RelativeFilePath).toString();
    }
    const QSignalBlocker blocker(m_link);
    m_link->clear();
    for (const VideoLink& link : m_links)
        m_link->addItem(link.path);
    m_link->setCurrentIndex(linkOfCoordinates(m_links, trackedVideo));
    readRegions();
}

void MeasuresView::readRegions()
{
    m_regions = BehaviorRegions{};
    QString error;
    const int index = m_link->currentIndex();
    if (index >= 0) {
        LockedFileRead read(filepath());
        if (read.isOpen())
            BehaviorRegionStore::read(read.reader(), m_links[static_cast<std::size_t>(index)].path, m_regions,
                                      error);
        else
            error = read.error();
    }
    QStringList zones;
    for (const RoiShape& zone : m_regions.zones)
        zones << zone.label();
    const double scale = m_regions.pixelsPerCentimetre();
    m_summary->setText(BD::regionsSummary().arg(
        m_regions.arena ? roiKindName(m_regions.arena->kind) : QStringLiteral("-"),
        zones.isEmpty() ? BD::noZones() : zones.join(QStringLiteral(", ")),
        scale > 0.0 ? QStringLiteral("%1 px/cm").arg(scale, 0, 'g', 4) : BD::noScaleText()));
    setValidationText(m_arenaValidation, !error.isEmpty()  ? error
                                         : m_regions.arena ? QString()
                                                           : BD::arenaMissingMessage());
}

bool MeasuresView::buildParameters(QVariantMap& parameters)
{
    if (!m_regions.arena) {
        setValidationText(m_arenaValidation, BD::arenaMissingMessage());
        return false;
    }
    parameters.insert(BehaviorRegionStore::toParameters(m_regions));
    if (m_binned->isChecked())
        parameters.insert(BD::TimeBin, m_timeBin->value());
    return true;
}

} // namespace zarvi
