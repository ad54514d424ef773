#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

#include <limits>
#include <vector>

#include <hdf5.h>

#include "datafile/ElementKind.h"
#include "datafile/ParallelChunkRead.h"

namespace zarvi {

/// What a path inside a data file names.
enum class ObjectKind
{
    Missing,
    Group,
    Dataset,
    Other
};

/// Base of the data-file layer: owns the identifier of the open file and the
/// checked wrappers around the HDF5 library that reading and writing share.
/// Every failure is a result (false, an empty value or a negative identifier),
/// never an exception, and lastError() says what went wrong in plain words.
/// HDF5's own error printing is switched off. An object is used by one thread
/// at a time; each user of a file holds its own reader or writer.
class HDF5Manager_V6
{
public:
    HDF5Manager_V6();
    virtual ~HDF5Manager_V6();
    HDF5Manager_V6(const HDF5Manager_V6&) = delete;
    HDF5Manager_V6& operator=(const HDF5Manager_V6&) = delete;

    /// True when the HDF5 library loaded at run time is the one whose headers we
    /// were built with; otherwise false and a message naming both versions.
    static bool libraryMatchesHeaders(QString* message = nullptr);

    // File.
    /// Opens an existing file (read-only or read-write). Refuses a missing path,
    /// a directory, and anything that is not an HDF5 file, with lastError() set.
    hid_t open(const QString& path, bool readOnly);
    hid_t fileId() const { return m_file; }
    bool isOpen() const { return m_file >= 0; }
    QString filePath() const { return m_path; }
    /// Closes the file this object opened (and anything still open in it).
    void closeFile();

    // Closing identifiers returned to the caller; each checks validity first.
    bool closeGroup(hid_t id);
    bool closeDataset(hid_t id);
    bool closeDataspace(hid_t id);
    bool closePropertyList(hid_t id);
    bool closeAttribute(hid_t id);

    // Structure. Locations are a file or group identifier; paths may hold several levels.
    /// The link exists, checked level by level so a missing parent is no error.
    bool exists(hid_t location, const QString& path) const;
    ObjectKind objectKind(hid_t location, const QString& path) const;
    /// Member names of a group in ascending byte order of their names.
    QStringList children(hid_t group) const;
    hid_t openGroup(hid_t location, const QString& path);
    hid_t openDataset(hid_t location, const QString& path);
    /// Opens a dataset that is read whole, once: without a chunk cache the library reads
    /// each chunk straight into the caller's buffer instead of into its cache and then
    /// copying it. Not for writing nor for reading in pieces smaller than a chunk.
    hid_t openDatasetForWholeRead(hid_t location, const QString& path);

    // Datasets.
    std::vector<hsize_t> dimensions(hid_t dataset) const;
    std::vector<hsize_t> maximumDimensions(hid_t dataset) const;
    /// Chunk dimensions, empty when the dataset is not chunked.
    std::vector<hsize_t> chunkDimensions(hid_t dataset) const;
    /// Deflate level of the dataset's filter, 0 when uncompressed.
    int deflateLevel(hid_t dataset) const;
    hsize_t storageSize(hid_t dataset) const;
    /// True when the bytes the file stores can hold the extent the dataset declares: all
    /// of them without compression, and no more than deflate could expand with it. False,
    /// with lastError() naming the dataset and the sizes, for a damaged or crafted extent.
    bool checkStoredExtent(hid_t dataset) const;
    ElementType elementType(hid_t dataset) const;

    /// Reads the whole dataset, converted to T. Refuses, before allocating, a dataset
    /// larger than the memory available, one that declares more than the file stores
    /// (checkStoredExtent()), and a non-numeric one.
    template <NumericElement T> bool read(hid_t dataset, std::vector<T>& out)
    {
        const std::vector<hsize_t> dims = dimensions(dataset);
        if (dims.empty() && !isValidDataset(dataset))
            return false;
        std::vector<hsize_t> start(dims.size(), 0);
        return read(dataset, start, dims, out);
    }
    /// Reads the hyperslab of count elements per dimension from start.
    template <NumericElement T>
    bool read(hid_t dataset, const std::vector<hsize_t>& start, const std::vector<hsize_t>& count,
              std::vector<T>& out)
    {
        hsize_t elements = 0;
        if (!checkReadable(dataset, count, sizeof(T), out.capacity(), elements))
            return false;
        if (out.capacity() < elements) {
            out.reserve(static_cast<std::size_t>(elements));
            touchPagesOnBothCores(out.data(), static_cast<std::size_t>(elements) * sizeof(T));
        }
        out.resize(static_cast<std::size_t>(elements));
        return readRaw(dataset, elementKindOf<T>(), start, count, out.data());
    }
    /// Reads a hyperslab into a buffer the caller owns (product of count elements),
    /// so that streaming readers need no allocation per frame.
    template <NumericElement T>
    bool read(hid_t dataset, const std::vector<hsize_t>& start, const std::vector<hsize_t>& count, T* out)
    {
        hsize_t elements = 0;
        if (!checkReadable(dataset, count, sizeof(T), std::numeric_limits<std::size_t>::max(), elements))
            return false;
        return readRaw(dataset, elementKindOf<T>(), start, count, out);
    }

    // Attributes.
    /// A string, an int, a qlonglong, a double, or a list (QStringList or QVariantList);
    /// an invalid QVariant when the attribute is missing or of an unhandled type. An
    /// attribute of several dimensions reads as a flat list in row-major order.
    QVariant readAttribute(hid_t location, const QString& name) const;
    QVariantMap readAllAttributes(hid_t location) const;
    bool attributeExists(hid_t location, const QString& name) const;
    std::vector<hsize_t> attributeDimensions(hid_t location, const QString& name) const;

    QString lastError() const { return m_lastError; }
    /// True when the last open() failed because another program holds the file.
    bool isFileInUse() const { return m_fileInUse; }

protected:
    hid_t openDataset(hid_t location, const QString& path, hid_t access);
    /// Switches off HDF5's printing of its error stack for the calling thread. The
    /// thread-safe library keeps that setting per thread, so every entry point that
    /// may run on a new thread calls this (it is cheap after the first call).
    static void silenceLibraryErrors();
    /// Rolls path back when a writer of it died (RollbackJournal); false with lastError()
    /// set when a live writer holds it or the rollback failed.
    bool rollBackInterruptedRun(const QString& path);
    /// A file, group or dataset identifier that is still open; otherwise sets lastError().
    bool isValidLocation(hid_t location) const;
    bool isValidDataset(hid_t dataset) const;
    /// Checks a read of `count` elements before anything is allocated; memory is asked
    /// about only for a block larger than the `held` elements the destination already
    /// has, as that is the only read that allocates (and asking costs a read of the
    /// kernel's counters, too much for every frame of a stack).
    bool checkReadable(hid_t dataset, const std::vector<hsize_t>& count, std::size_t elementBytes,
                       std::size_t held, hsize_t& elements);
    bool readRaw(hid_t dataset, ElementKind kind, const std::vector<hsize_t>& start,
                 const std::vector<hsize_t>& count, void* out);
    void setError(const QString& text) const { m_lastError = text; }
    /// Sets text as lastError(), followed by the library's own reason when it gave one.
    void setLibraryError(const QString& text) const;
    /// The path of an open object inside its file, for messages.
    static QString pathOf(hid_t object);
    /// Converts a path to the UTF-8 bytes the library expects for object names.
    static QByteArray objectName(const QString& path) { return path.toUtf8(); }

    hid_t m_file = H5I_INVALID_HID;
    QString m_path;
    mutable QString m_lastError;
    bool m_fileInUse = false;
};

} // namespace zarvi
