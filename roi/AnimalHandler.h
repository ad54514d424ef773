#pragma once

#include "roi/RegionHandler.h"

namespace zarvi {

/// A shape drawn around the animal on one frame of the behaviour video, labelled
/// "Animal", from which the animal's size is estimated. GUI thread.
class AnimalHandler : public RegionHandler
{
    Q_OBJECT

public:
    explicit AnimalHandler(ZarviGraphicsView* view, QObject* parent = nullptr);

    /// The animal's size in pixels: the longer side of the shape's pixel extent (both
    /// ends included), 0 when there is no shape.
    int animalSize() const;

protected:
    QColor roiColor() const override;
};

} // namespace zarvi
