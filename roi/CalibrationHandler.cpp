#include "roi/CalibrationHandler.h"

#include "definitions/BehaviorViewDefinitions.h"
#include "roi/AbstractROI.h"

namespace zarvi {

CalibrationHandler::CalibrationHandler(ZarviGraphicsView* view, QObject* parent)
    : RegionHandler(view, {RoiKind::Line}, BehaviorViewDefinitions::calibrationName(), parent)
{
}

double CalibrationHandler::lineLength() const
{
    return hasRegion() ? rois().front()->measure() : 0.0;
}

double CalibrationHandler::pixelsPerCentimetre(double centimetres) const
{
    const double pixels = lineLength();
    return pixels > 0.0 && centimetres > 0.0 ? pixels / centimetres : 0.0;
}

QColor CalibrationHandler::roiColor() const
{
    return QColor(255, 235, 59);
}

} // namespace zarvi
