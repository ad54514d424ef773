#pragma once

#include "roi/RoiShape.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace zarvi {

/// Reads the regions of interest ImageJ saves: one `.roi` file, or a ZIP archive of
/// them (a ROI Manager's "RoiSet.zip"). A `.roi` file is a 64-byte big-endian header
/// ("Iout", version, type, the bounds top, left, bottom, right, the number of points,
/// options) followed by the points. What each type becomes:
///
/// - rectangle: a Rectangle with the corners (left, top) and (right - 1, bottom - 1), so
///   that its pixel extent (roiBounds) is ImageJ's width right - left and height
///   bottom - top; rounded corners are not kept;
/// - oval: of odd equal width and height d, a Circle centred on the middle pixel with
///   the radius (d - 1) / 2, which covers the same d x d pixels; any other oval, whose
///   centre falls between pixels, a Polygon of its outline through the centres of its
///   edge pixels (one vertex per degree, rounded);
/// - polygon and traced (the wand's outline): a Polygon; freehand: a Freehand; their
///   vertices are (left, top) plus the stored offsets, or the sub-pixel coordinates,
///   rounded half away from zero, when the file has them. ImageJ puts such vertices on
///   pixel corners and we on pixel centres, so the filled region reaches one pixel
///   further right and down than ImageJ's;
/// - lines, points, angles and composite shapes are refused with a message.
///
/// Names come from the file name, or from each archive entry's name, without ".roi".
/// Plain functions; any thread.
class ImageJRoiReader
{
public:
    /// Reads `path`, a `.roi` file or a ZIP of them (told apart by their content),
    /// appending its ROIs to `rois` in file order; nothing is appended on failure.
    static bool read(const QString& path, std::vector<RoiShape>& rois, QString& error);
    /// One ROI from the bytes of a `.roi` file, named `name`.
    static bool decode(const QByteArray& bytes, const QString& name, RoiShape& roi, QString& error);
};

} // namespace zarvi
