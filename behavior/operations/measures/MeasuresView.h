#pragma once

#include "behavior/BehaviorRegions.h"
#include "behavior/VideoLink.h"
#include "framework/AbstractOperationView.h"

#include <vector>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;

namespace zarvi {

/// Parameters of "Measures": the video link whose arena, zones and calibration are measured
/// (those the behaviour page stored on it; by default the link of the video the selected
/// coordinates were tracked on), shown in a summary, and the time bins. A link without a
/// finished arena refuses the run with the arena message. GUI thread.
class MeasuresView : public AbstractOperationView
{
    Q_OBJECT

public:
    explicit MeasuresView(QWidget* parent = nullptr);

    QComboBox* linkBox() const { return m_link; }
    QLabel* arenaValidation() const { return m_arenaValidation; }
    /// The regions read from the chosen link.
    const BehaviorRegions& regions() const { return m_regions; }

protected:
    bool buildParameters(QVariantMap& parameters) override;
    /// Lists the file's video links and chooses the one the coordinates name.
    void datasetsChanged() override;

private:
    /// Reads the chosen link's regions and shows them.
    void readRegions();

    QComboBox* m_link;
    QLabel* m_summary;
    QLabel* m_arenaValidation;
    QCheckBox* m_binned;
    QDoubleSpinBox* m_timeBin;
    std::vector<VideoLink> m_links;
    BehaviorRegions m_regions;
};

} // namespace zarvi
