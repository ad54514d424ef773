#pragma once

#include "datafile/HDF5Writer_V6.h"
#include "roi/RoiShape.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace zarvi {

/// The regions of interest of an image stack in its data file. For the stack
/// "<...>/<sensor>/ImageStack" each ROI is a group "<...>/<sensor>/ROIs/<name>" holding
/// no data, only the attributes `Coordinates` (int32, n rows x 2 columns: the points,
/// x then y), `Shape` (int32, the RoiKind code) and `Username` (the name). Unnamed
/// shapes are named "ROI%1" with one more than the highest number such names already
/// have. An entry is written once and never rewritten: adding refuses a name in use,
/// so the attributes an entry has are never written again. Callers hold the file's
/// access lock; the functions only read or write the open file they are given. Used
/// on the thread that holds the file.
class RoiStore
{
public:
    static inline const QString GroupName = QStringLiteral("ROIs");
    static inline const QString CoordinatesKey = QStringLiteral("Coordinates");
    static inline const QString ShapeKey = QStringLiteral("Shape");

    /// "<...>/<sensor>/ROIs" for the stack "<...>/<sensor>/ImageStack".
    static QString groupPath(const QString& stackPath);

    /// The frame size of the stack: its `Width` and `Height` attributes, else its extent
    /// [height, width, frames]. False, with a message, when stackPath is not a 3-D dataset.
    static bool imageSize(HDF5Manager_V6& file, const QString& stackPath, int& width, int& height,
                          QString& error);

    /// The stack's ROIs: "ROI%1" names in the order of their numbers, then the others by
    /// name. Each carries its entry's name, and its number when the name is "ROI%1"
    /// (else 0). No `ROIs` group gives an empty list; an entry without readable
    /// `Coordinates` or a known `Shape` fails the whole listing, naming the entry.
    static bool list(HDF5Manager_V6& file, const QString& stackPath, std::vector<RoiShape>& rois,
                     QString& error);

    /// Adds one ROI; see the list form.
    static bool add(HDF5Writer_V6& file, const QString& stackPath, const RoiShape& shape, int width,
                    int height, QString& assignedName, QString& error);
    /// Adds ROIs to a width x height stack, all or none: every shape is checked first
    /// (validateRoi, a name that is new and holds neither / nor \), and a failure while
    /// writing deletes what this call created. `assignedNames` gets the name of each.
    static bool add(HDF5Writer_V6& file, const QString& stackPath, const std::vector<RoiShape>& shapes,
                    int width, int height, QStringList& assignedNames, QString& error);

    /// Removes the ROI `name`, and the `ROIs` group when it was the last one.
    static bool remove(HDF5Writer_V6& file, const QString& stackPath, const QString& name, QString& error);
};

} // namespace zarvi
