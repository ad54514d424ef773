#include "roi/ArenaHandler.h"

#include "definitions/BehaviorViewDefinitions.h"

namespace zarvi {

ArenaHandler::ArenaHandler(ZarviGraphicsView* view, QObject* parent)
    : RegionHandler(view, arenaKinds(), BehaviorViewDefinitions::arenaName(), parent)
{
}

QList<RoiKind> ArenaHandler::arenaKinds()
{
    return {RoiKind::Rectangle, RoiKind::Circle, RoiKind::Polygon};
}

bool ArenaHandler::arena(RoiShape& shape, QString& error) const
{
    if (!hasRegion()) {
        error = BehaviorViewDefinitions::arenaMissingMessage();
        return false;
    }
    shape = region();
    return true;
}

QColor ArenaHandler::roiColor() const
{
    return QColor(0, 229, 255);
}

} // namespace zarvi
