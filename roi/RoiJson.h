#pragma once

#include "roi/RoiShape.h"

#include <QString>
#include <QVariant>

#include <vector>

namespace zarvi {

/// The one text form of regions of interest that the command line, parameter files and
/// scripts share: an ROI is {"Name": "ROI1", "Shape": "Rectangle", "Points": [[x0, y0],
/// [x1, y1]]}, several are a list of them. "Name" is optional; "Shape" is one of the
/// names roiKindName gives; "Points" are integer pixel coordinates. Any thread.

/// Reads one ROI (a QVariantMap), several (a QVariantList of maps), or either written as
/// JSON text (a QString), appending them to `rois`. Strict: a point must be a pair of
/// integral numbers (2.5 is refused, not rounded), and an unknown key is refused so a
/// misspelt "Name" is not lost. On failure `rois` is left as it was and `error` names
/// the ROI (counted from 1) and what is wrong, in rich text.
bool roisFromJson(const QVariant& value, std::vector<RoiShape>& rois, QString& error);

/// One ROI as compact JSON with its keys in the order Name, Shape, Points; no "Name"
/// when the shape has none.
QString roiToJson(const RoiShape& roi);

/// A compact JSON list of the ROIs, each as roiToJson writes it.
QString roisToJson(const std::vector<RoiShape>& rois);

} // namespace zarvi
