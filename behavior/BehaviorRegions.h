#pragma once

#include "roi/RoiShape.h"

#include <QString>
#include <QVariantMap>

#include <optional>
#include <vector>

namespace zarvi {

class HDF5Manager_V6;
class HDF5Writer_V6;
class ParameterValues;

/// The arena, the zones and the calibration drawn on a behaviour video.
struct BehaviorRegions
{
    std::optional<RoiShape> arena;
    /// Named "Zone1", "Zone2", ...
    std::vector<RoiShape> zones;
    /// The calibration line (a Line shape) and its true length in centimetres.
    std::optional<RoiShape> calibration;
    double calibrationCentimetres = 0.0;

    /// Pixels per centimetre; 0 when the line or its length is missing.
    double pixelsPerCentimetre() const;
};

/// Keeps BehaviorRegions in two places. In the data file, on the video's link group: the
/// attributes "ArenaCoordinates" (int32 [n, 2]), "ArenaRoiShape" (the shape's name),
/// "CalibrationCoordinates" (int32 [2, 2]) and "CalibrationLength(cm)" (float64), and one
/// group per zone in its "Zones" group, each with the attributes "Coordinates",
/// "Shape" and "Username" of a region of interest. In the parameters of the "Measures"
/// operation, under the same keys: the arena's points as a flat list, the zones as ROI
/// JSON (RoiJson), the line's ends as [x0, y0, x1, y1]. Plain functions; the file ones
/// run on the thread that holds the file.
class BehaviorRegionStore
{
public:
    static inline const QString ZonesGroup = QStringLiteral("Zones");

    /// Reads what the link holds; regions it does not hold stay empty. False with `error`
    /// when an attribute or zone entry is damaged.
    static bool read(HDF5Manager_V6& file, const QString& linkPath, BehaviorRegions& regions, QString& error);
    /// Replaces what the link holds by `regions`: absent regions are removed from it.
    static bool write(HDF5Writer_V6& file, const QString& linkPath, const BehaviorRegions& regions,
                      QString& error);

    /// The "Measures" parameters that carry `regions` (keys of absent regions left out;
    /// the calibration only with both its line and its length).
    static QVariantMap toParameters(const BehaviorRegions& regions);
    /// The regions a run's parameters give, checked: an arena of whole pixel pairs that
    /// suit its shape, zones with distinct names (unnamed ones get "Zone%1" by their
    /// place in the list), a calibration with both its line and a positive length. False
    /// with `error` otherwise.
    static bool fromParameters(const ParameterValues& parameters, BehaviorRegions& regions, QString& error);
};

} // namespace zarvi
