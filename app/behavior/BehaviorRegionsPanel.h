#pragma once

#include "behavior/BehaviorRegions.h"

#include <QGroupBox>

class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QToolButton;

namespace zarvi {

class AbstractROIHandler;
class AnimalHandler;
class ArenaHandler;
class CalibrationHandler;
class ZarviGraphicsView;
class ZonesHandler;

/// The tools that draw the arena, the zones, the calibration line and the animal on the
/// behaviour video, one handler each on the video's view: a "Draw ..." button makes its
/// handler the one that takes the mouse (one at a time), with the shape combos "Arena
/// Shape" and "Select Zones Shape", the calibration's length in centimetres with the scale
/// it gives, and the animal's size. regionsChanged() follows every finished change. GUI
/// thread.
class BehaviorRegionsPanel : public QGroupBox
{
    Q_OBJECT

public:
    explicit BehaviorRegionsPanel(ZarviGraphicsView* view, QWidget* parent = nullptr);

    /// The finished regions drawn (an arena still being drawn is none).
    BehaviorRegions regions() const;
    /// Shows `regions` in place of those drawn (a video's stored regions), without
    /// announcing a change. Regions that do not fit the current frame are left out.
    void setRegions(const BehaviorRegions& regions);
    /// The finished arena, or false with the message that asks for one.
    bool arena(RoiShape& shape, QString& error) const;

    ArenaHandler* arenaHandler() const { return m_arena; }
    ZonesHandler* zonesHandler() const { return m_zones; }
    CalibrationHandler* calibrationHandler() const { return m_calibration; }
    AnimalHandler* animalHandler() const { return m_animal; }
    QToolButton* drawButton(AbstractROIHandler* handler) const;
    QDoubleSpinBox* lengthBox() const { return m_length; }
    QLabel* scaleLabel() const { return m_scale; }

signals:
    void regionsChanged();

private:
    /// Makes `handler` take the mouse (or none when its button was unchecked).
    void activate(AbstractROIHandler* handler, bool active);
    void onChanged();
    void updateTexts();

    ZarviGraphicsView* m_view;
    ArenaHandler* m_arena;
    ZonesHandler* m_zones;
    CalibrationHandler* m_calibration;
    AnimalHandler* m_animal;
    std::vector<std::pair<AbstractROIHandler*, QToolButton*>> m_buttons;
    QComboBox* m_arenaShape;
    QComboBox* m_zonesShape;
    QDoubleSpinBox* m_length;
    QLabel* m_scale;
    QLabel* m_animalSize;
    bool m_loading = false;
};

} // namespace zarvi
