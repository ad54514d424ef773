#pragma once

#include "datafile/HDF5Manager_V6.h"

#include <cstdint>
#include <vector>

namespace zarvi {

/// Creation, writing, extension, deletion, renaming and copying in a data file.
/// Files are written with library-version bounds that HDF5 1.8 readers accept
/// and strings as variable-length UTF-8. Used on one thread at a time.
class HDF5Writer_V6 : public HDF5Manager_V6
{
public:
    /// The two texts a group name may not contain: the path separator and the
    /// Windows path separator (a pasted file path is never a valid level name).
    static const QStringList& forbiddenNameTexts();

    /// Opens an existing file read-write.
    hid_t open(const QString& path) { return HDF5Manager_V6::open(path, false); }
    /// Creates a file (truncating any of that name) and writes the program's
    /// identity on its root: "SoftwareName", "SoftwareVersion", "Created".
    hid_t create(const QString& path);

    /// Creates one group level; refuses names holding a forbidden text. The caller closes it.
    hid_t createGroup(hid_t location, const QString& name);
    /// Creates every missing level of a "/"-separated path and returns the last group.
    hid_t createGroupPath(hid_t location, const QString& path);
    /// Removes a link (the space is reclaimed only by repacking).
    bool deleteLink(hid_t location, const QString& path);
    bool move(hid_t location, const QString& from, const QString& to);
    bool copy(hid_t sourceLocation, const QString& sourceName, hid_t destinationLocation,
              const QString& destinationName);
    /// A second name for the object at sourceName (a hard link): both names reach the same
    /// stored object, which lives on until its last name is removed.
    bool link(hid_t sourceLocation, const QString& sourceName, hid_t destinationLocation,
              const QString& destinationName);
    /// Gives destination (a file, group or dataset, possibly of another file) exactly the
    /// attributes of source, each in its stored type and shape; its own are removed first.
    bool copyAttributes(hid_t source, hid_t destination);

    /// Chunked dataset; deflateLevel 0 means uncompressed. Use H5S_UNLIMITED in
    /// maximumDimensions for growable axes.
    hid_t createDataset(hid_t location, ElementKind kind, const QString& name, int rank,
                        const std::vector<hsize_t>& maximumDimensions,
                        const std::vector<hsize_t>& chunkDimensions,
                        const std::vector<hsize_t>& initialDimensions, int deflateLevel);
    /// Rank 1, length 0, unlimited, chunk min(expectedLength, 65536), uncompressed.
    hid_t create1D(hid_t location, ElementKind kind, const QString& name, hsize_t expectedLength);
    /// "ImageStack"-style stack: uint16, height x width x 0 growing by frames,
    /// one chunk per frame, then "BitCount", "Format", "Height", "Width".
    hid_t createImageStack(hid_t location, const QString& name, int height, int width, int format,
                           int bitCount, int deflateLevel);

    /// Writes count elements per dimension at start, inside the current extent.
    template <NumericElement T>
    bool write(hid_t dataset, const T* data, const std::vector<hsize_t>& start,
               const std::vector<hsize_t>& count)
    {
        return writeRaw(dataset, elementKindOf<T>(), data, start, count);
    }
    /// Grows the last axis by count's last entry and writes the block at the old end;
    /// the other entries of count must equal the dataset's extent.
    template <NumericElement T> bool append(hid_t dataset, const T* data, const std::vector<hsize_t>& count)
    {
        return appendRaw(dataset, elementKindOf<T>(), data, count);
    }

    /// Replaces any attribute of that name. QString, int/bool (32-bit), qlonglong
    /// (64-bit), double/float (64-bit float), QStringList, QVariantList of numbers or
    /// strings, QList<int>, QList<qlonglong> and QList<double>; other kinds write
    /// nothing, fail and leave an existing attribute untouched. An empty list is
    /// written as a 1-D attribute of 0 elements.
    bool writeAttribute(hid_t location, const QString& name, const QVariant& value);
    /// Replaces any attribute of that name with a rows x columns array of 32-bit signed
    /// integers, `values` in row-major order (rows * columns of them). readAttribute()
    /// gives it back as a flat list in the same order, attributeDimensions() its shape.
    bool writeAttribute(hid_t location, const QString& name, const std::vector<std::int32_t>& values,
                        hsize_t rows, hsize_t columns);
    bool deleteAttribute(hid_t location, const QString& name);
    bool renameAttribute(hid_t location, const QString& oldName, const QString& newName);

    bool flush();

private:
    /// The source exists and the destination name is free; otherwise lastError() says which.
    bool canNameAgain(hid_t sourceLocation, const QString& sourceName, hid_t destinationLocation,
                      const QString& destinationName);
    /// The location is open and the name not empty; otherwise lastError() says which.
    bool canWriteAttribute(hid_t location, const QString& name);
    /// Deletes an attribute of that name, if any, so that a new one can be created.
    bool clearAttribute(hid_t location, const QString& name);
    bool writeRaw(hid_t dataset, ElementKind kind, const void* data, const std::vector<hsize_t>& start,
                  const std::vector<hsize_t>& count);
    bool appendRaw(hid_t dataset, ElementKind kind, const void* data, const std::vector<hsize_t>& count);
};

} // namespace zarvi
