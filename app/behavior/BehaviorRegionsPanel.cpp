#include "app/behavior/BehaviorRegionsPanel.h"

#include "definitions/BehaviorViewDefinitions.h"
#include "roi/AnimalHandler.h"
#include "roi/ArenaHandler.h"
#include "roi/CalibrationHandler.h"
#include "roi/ZarviGraphicsView.h"
#include "roi/ZonesHandler.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QScopedValueRollback>
#include <QToolButton>

namespace zarvi {

namespace {

using BD = BehaviorViewDefinitions;

QComboBox* shapeBox(const QString& objectName, const QList<RoiKind>& kinds, QWidget* parent)
{
    auto* box = new QComboBox(parent);
    box->setObjectName(objectName);
    for (RoiKind kind : kinds)
        box->addItem(roiKindName(kind), static_cast<int>(kind));
    return box;
}

QToolButton* toolButton(const QString& objectName, const QString& text, bool checkable, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(objectName);
    button->setText(text);
    button->setCheckable(checkable);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return button;
}

} // namespace

BehaviorRegionsPanel::BehaviorRegionsPanel(ZarviGraphicsView* view, QWidget* parent)
    : QGroupBox(BD::regionsTitle(), parent), m_view(view), m_arena(new ArenaHandler(view, this)),
      m_zones(new ZonesHandler(view, this)), m_calibration(new CalibrationHandler(view, this)),
      m_animal(new AnimalHandler(view, this))
{
    setObjectName(QStringLiteral("gb_regions"));
    auto* grid = new QGridLayout(this);
    const struct
    {
        AbstractROIHandler* handler;
        const char* name;
        QString text;
    } tools[] = {{m_arena, "tb_drawArena", BD::drawArenaLabel()},
                 {m_zones, "tb_drawZones", BD::drawZonesLabel()},
                 {m_calibration, "tb_drawCalibration", BD::drawCalibrationLabel()},
                 {m_animal, "tb_drawAnimal", BD::drawAnimalLabel()}};
    for (int row = 0; row < 4; ++row) {
        AbstractROIHandler* handler = tools[row].handler;
        QToolButton* draw = toolButton(QString::fromLatin1(tools[row].name), tools[row].text, true, this);
        QToolButton* clear = toolButton(QString::fromLatin1(tools[row].name).replace("Draw", "Clear"),
                                        BD::clearLabel(), false, this);
        clear->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        grid->addWidget(draw, row, 0);
        grid->addWidget(clear, row, 3);
        m_buttons.emplace_back(handler, draw);
        connect(draw, &QToolButton::toggled, this, [this, handler](bool on) { activate(handler, on); });
        connect(clear, &QToolButton::clicked, handler, &AbstractROIHandler::clear);
        for (auto announce : {&AbstractROIHandler::roiAdded, &AbstractROIHandler::roiChanged,
                              &AbstractROIHandler::roiRemoved})
            connect(handler, announce, this, &BehaviorRegionsPanel::onChanged);
    }

    m_arenaShape = shapeBox(QStringLiteral("cb_arenaShape"), ArenaHandler::arenaKinds(), this);
    m_arenaShape->setToolTip(BD::arenaShapeLabel());
    m_zonesShape = shapeBox(QStringLiteral("cb_zonesShape"), ZonesHandler::shapeKinds(), this);
    m_zonesShape->setToolTip(BD::zonesShapeLabel());
    grid->addWidget(new QLabel(BD::arenaShapeLabel(), this), 0, 1);
    grid->addWidget(m_arenaShape, 0, 2);
    grid->addWidget(new QLabel(BD::zonesShapeLabel(), this), 1, 1);
    grid->addWidget(m_zonesShape, 1, 2);
    m_length = new QDoubleSpinBox(this);
    m_length->setObjectName(QStringLiteral("dsb_calibrationLength"));
    m_length->setRange(0.0, 100000.0);
    m_length->setDecimals(2);
    m_length->setToolTip(BD::calibrationLengthTooltip());
    grid->addWidget(new QLabel(BD::lengthLabel(), this), 2, 1);
    grid->addWidget(m_length, 2, 2);
    m_animalSize = new QLabel(this);
    m_animalSize->setObjectName(QStringLiteral("lb_animalSize"));
    grid->addWidget(m_animalSize, 3, 1, 1, 2);
    m_scale = new QLabel(this);
    m_scale->setObjectName(QStringLiteral("lb_scale"));
    grid->addWidget(m_scale, 4, 0, 1, 4);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(2, 1);

    connect(m_arenaShape, &QComboBox::currentIndexChanged, this,
            [this] { m_arena->setShapeKind(static_cast<RoiKind>(m_arenaShape->currentData().toInt())); });
    connect(m_zonesShape, &QComboBox::currentIndexChanged, this,
            [this] { m_zones->setShapeKind(static_cast<RoiKind>(m_zonesShape->currentData().toInt())); });
    connect(m_length, &QDoubleSpinBox::valueChanged, this, &BehaviorRegionsPanel::onChanged);
    updateTexts();
}

QToolButton* BehaviorRegionsPanel::drawButton(AbstractROIHandler* handler) const
{
    for (const auto& [owner, button] : m_buttons)
        if (owner == handler)
            return button;
    return nullptr;
}

void BehaviorRegionsPanel::activate(AbstractROIHandler* handler, bool active)
{
    if (!active) {
        if (m_view->activeHandler() == handler)
            m_view->clearActiveHandler();
        return;
    }
    // One tool at a time.
    for (const auto& [owner, button] : m_buttons)
        if (owner != handler) {
            const QSignalBlocker blocker(button);
            button->setChecked(false);
        }
    m_view->setActiveHandler(handler);
}

BehaviorRegions BehaviorRegionsPanel::regions() const
{
    BehaviorRegions regions;
    RoiShape arena;
    QString ignored;
    if (m_arena->arena(arena, ignored))
        regions.arena = arena;
    regions.zones = m_zones->shapes();
    if (m_calibration->hasRegion())
        regions.calibration = m_calibration->region();
    regions.calibrationCentimetres = m_length->value();
    return regions;
}

void BehaviorRegionsPanel::setRegions(const BehaviorRegions& regions)
{
    const QScopedValueRollback<bool> loading(m_loading, true);
    for (AbstractROIHandler* handler :
         std::initializer_list<AbstractROIHandler*>{m_arena, m_zones, m_calibration, m_animal})
        handler->clear();
    QString ignored;
    if (regions.arena) {
        m_arenaShape->setCurrentIndex(m_arenaShape->findData(static_cast<int>(regions.arena->kind)));
        m_arena->addShape(*regions.arena, ignored);
    }
    for (const RoiShape& zone : regions.zones)
        m_zones->addShape(zone, ignored);
    if (regions.calibration)
        m_calibration->addShape(*regions.calibration, ignored);
    m_length->setValue(regions.calibrationCentimetres);
    updateTexts();
}

bool BehaviorRegionsPanel::arena(RoiShape& shape, QString& error) const
{
    return m_arena->arena(shape, error);
}

void BehaviorRegionsPanel::onChanged()
{
    updateTexts();
    if (!m_loading)
        emit regionsChanged();
}

void BehaviorRegionsPanel::updateTexts()
{
    const double pixels = m_calibration->lineLength();
    const double scale = m_calibration->pixelsPerCentimetre(m_length->value());
    m_scale->setText(
        scale > 0.0
            ? BD::scaleText().arg(pixels, 0, 'f', 0).arg(m_length->value(), 0, 'g', 6).arg(scale, 0, 'f', 3)
            : BD::noScaleText());
    m_animalSize->setText(BD::animalSizeText().arg(m_animal->animalSize()));
}

} // namespace zarvi
