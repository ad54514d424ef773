#pragma once

#include "roi/RegionHandler.h"

namespace zarvi {

/// The calibration line of the behaviour video: one LineROI labelled "Calibration", drawn
/// over something of known length. Its measure in pixels and the length the user types in
/// centimetres give the scale. GUI thread.
class CalibrationHandler : public RegionHandler
{
    Q_OBJECT

public:
    explicit CalibrationHandler(ZarviGraphicsView* view, QObject* parent = nullptr);

    /// The line's measure in pixels; 0 when there is no line.
    double lineLength() const;
    /// Pixels per centimetre for a line `centimetres` long; 0 without a line or a length.
    double pixelsPerCentimetre(double centimetres) const;

protected:
    QColor roiColor() const override;
};

} // namespace zarvi
