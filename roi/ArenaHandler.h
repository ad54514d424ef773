#pragma once

#include "roi/RegionHandler.h"

namespace zarvi {

/// The arena of the behaviour video: one region, labelled "Arena", in the shape chosen
/// under "Arena Shape" ("Rectangle", "Circle" or "Polygon"). A new arena replaces the old
/// one once finished. An arena counts only when finished: a polygon still being drawn
/// (not yet closed by a double-click) is no arena. GUI thread.
class ArenaHandler : public RegionHandler
{
    Q_OBJECT

public:
    explicit ArenaHandler(ZarviGraphicsView* view, QObject* parent = nullptr);

    /// The shapes an arena may have, the first being the default.
    static QList<RoiKind> arenaKinds();
    /// The finished arena; false, with the message asking the user to draw one (and to
    /// close a polygon), when there is none.
    bool arena(RoiShape& shape, QString& error) const;

protected:
    QColor roiColor() const override;
};

} // namespace zarvi
