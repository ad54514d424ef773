#pragma once

#include "roi/NumberedRoiHandler.h"

namespace zarvi {

/// The zones of the behaviour video, numbered and named "Zone%1" after their number,
/// in orange, drawn in the shape chosen under "Select Zones Shape". GUI thread.
class ZonesHandler : public NumberedRoiHandler
{
    Q_OBJECT

public:
    using NumberedRoiHandler::NumberedRoiHandler;

protected:
    QColor roiColor() const override { return QColor(255, 145, 0); }
    void nameRoi(AbstractROI& roi) const override;
};

} // namespace zarvi
