#include "roi/AnimalHandler.h"

#include "definitions/BehaviorViewDefinitions.h"
#include "roi/RoiGeometry.h"

#include <algorithm>

namespace zarvi {

AnimalHandler::AnimalHandler(ZarviGraphicsView* view, QObject* parent)
    : RegionHandler(view, {RoiKind::Rectangle, RoiKind::Circle, RoiKind::Polygon, RoiKind::Freehand},
                    BehaviorViewDefinitions::animalName(), parent)
{
}

int AnimalHandler::animalSize() const
{
    if (!hasRegion())
        return 0;
    const cv::Rect bounds = roiBounds(region());
    return std::max(bounds.width, bounds.height);
}

QColor AnimalHandler::roiColor() const
{
    return QColor(255, 64, 200);
}

} // namespace zarvi
