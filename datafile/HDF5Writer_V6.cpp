#include "datafile/HDF5Writer_V6.h"

#include "datafile/HDF5Block.h"
#include "datafile/HDF5Handle.h"
#include "datafile/JournaledFileDriver.h"
#include "definitions/FileDefinitions.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <limits>

namespace zarvi {

namespace {

constexpr hsize_t MaximumStreamChunk = 65536;

/// Little-endian standard types, so a file reads the same on every machine.
hid_t storedTypeOf(ElementKind kind)
{
    switch (kind) {
    case ElementKind::Int8:
        return H5T_STD_I8LE;
    case ElementKind::UInt8:
        return H5T_STD_U8LE;
    case ElementKind::Int16:
        return H5T_STD_I16LE;
    case ElementKind::UInt16:
        return H5T_STD_U16LE;
    case ElementKind::Int32:
        return H5T_STD_I32LE;
    case ElementKind::UInt32:
        return H5T_STD_U32LE;
    case ElementKind::Int64:
        return H5T_STD_I64LE;
    case ElementKind::UInt64:
        return H5T_STD_U64LE;
    case ElementKind::Float32:
        return H5T_IEEE_F32LE;
    case ElementKind::Float64:
        return H5T_IEEE_F64LE;
    }
    return H5I_INVALID_HID;
}

/// Link creation properties that mark new names as UTF-8.
HDF5Handle utf8LinkProperties()
{
    HDF5Handle properties(H5Pcreate(H5P_LINK_CREATE), H5Pclose);
    H5Pset_char_encoding(properties.get(), H5T_CSET_UTF8);
    return properties;
}

} // namespace

const QStringList& HDF5Writer_V6::forbiddenNameTexts()
{
    static const QStringList texts{QStringLiteral("/"), QStringLiteral("\\")};
    return texts;
}

hid_t HDF5Writer_V6::create(const QString& path)
{
    silenceLibraryErrors();
    closeFile();
    QString versionMessage;
    if (!libraryMatchesHeaders(&versionMessage)) {
        setError(versionMessage);
        return H5I_INVALID_HID;
    }
    if (QFileInfo(path).isDir()) {
        setError(QStringLiteral("Not a file but a folder: %1").arg(path));
        return H5I_INVALID_HID;
    }
    if (!rollBackInterruptedRun(path))
        return H5I_INVALID_HID;
    // Keep to the object formats of HDF5 1.8 so that older readers open our files.
    const HDF5Handle access(H5Pcreate(H5P_FILE_ACCESS), H5Pclose);
    if (H5Pset_libver_bounds(access.get(), H5F_LIBVER_EARLIEST, H5F_LIBVER_V18) < 0 ||
        !JournaledFileDriver::use(access.get())) {
        setLibraryError(QStringLiteral("Unable to set up file access for %1").arg(path));
        return H5I_INVALID_HID;
    }
    const hid_t file =
        H5Fcreate(QFile::encodeName(path).constData(), H5F_ACC_TRUNC, H5P_DEFAULT, access.get());
    if (file < 0) {
        setLibraryError(QStringLiteral("Unable to create file: %1").arg(path));
        return H5I_INVALID_HID;
    }
    m_file = file;
    m_path = path;
    if (!writeAttribute(file, FileDefinitions::SoftwareName, FileDefinitions::SoftwareNameValue) ||
        !writeAttribute(file, FileDefinitions::SoftwareVersion, FileDefinitions::SoftwareVersionValue) ||
        !writeAttribute(file, FileDefinitions::Created, QDateTime::currentDateTime().toString()) ||
        !flush()) {
        const QString reason = lastError();
        closeFile();
        setError(reason);
        return H5I_INVALID_HID;
    }
    return file;
}

hid_t HDF5Writer_V6::createGroup(hid_t location, const QString& name)
{
    if (!isValidLocation(location))
        return H5I_INVALID_HID;
    if (name.isEmpty()) {
        setError(QStringLiteral("Group name is empty"));
        return H5I_INVALID_HID;
    }
    for (const QString& text : forbiddenNameTexts()) {
        if (name.contains(text)) {
            setError(QStringLiteral("Group name %1 contains the forbidden text \"%2\"").arg(name, text));
            return H5I_INVALID_HID;
        }
    }
    if (exists(location, name)) {
        setError(QStringLiteral("Object already exists: %1").arg(name));
        return H5I_INVALID_HID;
    }
    const HDF5Handle links = utf8LinkProperties();
    const hid_t group =
        H5Gcreate2(location, objectName(name).constData(), links.get(), H5P_DEFAULT, H5P_DEFAULT);
    if (group < 0)
        setLibraryError(QStringLiteral("Unable to create group %1").arg(name));
    return group;
}

hid_t HDF5Writer_V6::createGroupPath(hid_t location, const QString& path)
{
    if (!isValidLocation(location))
        return H5I_INVALID_HID;
    const QStringList levels = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (levels.isEmpty()) {
        setError(QStringLiteral("Group path is empty"));
        return H5I_INVALID_HID;
    }
    const char* startName = path.startsWith(QLatin1Char('/')) ? "/" : ".";
    HDF5Handle current(H5Gopen2(location, startName, H5P_DEFAULT), H5Gclose);
    if (!current.valid()) {
        setLibraryError(QStringLiteral("Unable to open the start of group path %1").arg(path));
        return H5I_INVALID_HID;
    }
    for (const QString& level : levels) {
        const hid_t next = exists(current.get(), level) ? openGroup(current.get(), level)
                                                        : createGroup(current.get(), level);
        if (next < 0)
            return H5I_INVALID_HID;
        current = HDF5Handle(next, H5Gclose);
    }
    return current.release();
}

bool HDF5Writer_V6::deleteLink(hid_t location, const QString& path)
{
    if (!exists(location, path)) {
        if (isValidLocation(location))
            setError(QStringLiteral("Path not found in file: %1").arg(path));
        return false;
    }
    if (H5Ldelete(location, objectName(path).constData(), H5P_DEFAULT) < 0) {
        setLibraryError(QStringLiteral("Unable to delete %1").arg(path));
        return false;
    }
    return true;
}

bool HDF5Writer_V6::move(hid_t location, const QString& from, const QString& to)
{
    if (!exists(location, from)) {
        if (isValidLocation(location))
            setError(QStringLiteral("Path not found in file: %1").arg(from));
        return false;
    }
    if (exists(location, to)) {
        setError(QStringLiteral("Object already exists: %1").arg(to));
        return false;
    }
    const HDF5Handle links = utf8LinkProperties();
    if (H5Lmove(location, objectName(from).constData(), location, objectName(to).constData(), links.get(),
                H5P_DEFAULT) < 0) {
        setLibraryError(QStringLiteral("Unable to move %1 to %2").arg(from, to));
        return false;
    }
    return true;
}

bool HDF5Writer_V6::canNameAgain(hid_t sourceLocation, const QString& sourceName, hid_t destinationLocation,
                                 const QString& destinationName)
{
    if (!isValidLocation(destinationLocation))
        return false;
    if (!exists(sourceLocation, sourceName)) {
        if (isValidLocation(sourceLocation))
            setError(QStringLiteral("Path not found in file: %1").arg(sourceName));
        return false;
    }
    if (exists(destinationLocation, destinationName)) {
        setError(QStringLiteral("Object already exists: %1").arg(destinationName));
        return false;
    }
    return true;
}

bool HDF5Writer_V6::copy(hid_t sourceLocation, const QString& sourceName, hid_t destinationLocation,
                         const QString& destinationName)
{
    if (!canNameAgain(sourceLocation, sourceName, destinationLocation, destinationName))
        return false;
    // Default copy properties take attributes and, for a group, every member.
    const HDF5Handle links = utf8LinkProperties();
    if (H5Ocopy(sourceLocation, objectName(sourceName).constData(), destinationLocation,
                objectName(destinationName).constData(), H5P_DEFAULT, links.get()) < 0) {
        setLibraryError(QStringLiteral("Unable to copy %1 to %2").arg(sourceName, destinationName));
        return false;
    }
    return true;
}

bool HDF5Writer_V6::link(hid_t sourceLocation, const QString& sourceName, hid_t destinationLocation,
                         const QString& destinationName)
{
    if (!canNameAgain(sourceLocation, sourceName, destinationLocation, destinationName))
        return false;
    const HDF5Handle links = utf8LinkProperties();
    if (H5Lcreate_hard(sourceLocation, objectName(sourceName).constData(), destinationLocation,
                       objectName(destinationName).constData(), links.get(), H5P_DEFAULT) < 0) {
        setLibraryError(QStringLiteral("Unable to link %1 to %2").arg(sourceName, destinationName));
        return false;
    }
    return true;
}

hid_t HDF5Writer_V6::createDataset(hid_t location, ElementKind kind, const QString& name, int rank,
                                   const std::vector<hsize_t>& maximumDimensions,
                                   const std::vector<hsize_t>& chunkDimensions,
                                   const std::vector<hsize_t>& initialDimensions, int deflateLevel)
{
    if (!isValidLocation(location))
        return H5I_INVALID_HID;
    const auto size = static_cast<std::size_t>(rank);
    if (rank < 1 || maximumDimensions.size() != size || chunkDimensions.size() != size ||
        initialDimensions.size() != size) {
        setError(
            QStringLiteral("Dataset %1: the dimensions given do not all have rank %2").arg(name).arg(rank));
        return H5I_INVALID_HID;
    }
    for (std::size_t i = 0; i < size; ++i) {
        if (chunkDimensions[i] == 0) {
            setError(QStringLiteral("Dataset %1: chunk dimensions must be positive").arg(name));
            return H5I_INVALID_HID;
        }
        if (maximumDimensions[i] != H5S_UNLIMITED && initialDimensions[i] > maximumDimensions[i]) {
            setError(QStringLiteral("Dataset %1: initial dimensions exceed the maximum").arg(name));
            return H5I_INVALID_HID;
        }
    }
    if (deflateLevel < 0 || deflateLevel > 9) {
        setError(QStringLiteral("Dataset %1: deflate level %2 is not between 0 and 9")
                     .arg(name)
                     .arg(deflateLevel));
        return H5I_INVALID_HID;
    }
    if (deflateLevel != 0 && H5Zfilter_avail(H5Z_FILTER_DEFLATE) <= 0) {
        setError(QStringLiteral("Deflate compression is not available in this HDF5 library"));
        return H5I_INVALID_HID;
    }
    if (name.isEmpty() || exists(location, name)) {
        setError(name.isEmpty() ? QStringLiteral("Dataset name is empty")
                                : QStringLiteral("Object already exists: %1").arg(name));
        return H5I_INVALID_HID;
    }
    const HDF5Handle space(H5Screate_simple(rank, initialDimensions.data(), maximumDimensions.data()),
                           H5Sclose);
    const HDF5Handle properties(H5Pcreate(H5P_DATASET_CREATE), H5Pclose);
    const HDF5Handle links = utf8LinkProperties();
    hid_t dataset = H5I_INVALID_HID;
    if (space.valid() && H5Pset_chunk(properties.get(), rank, chunkDimensions.data()) >= 0 &&
        (deflateLevel == 0 || H5Pset_deflate(properties.get(), static_cast<unsigned>(deflateLevel)) >= 0))
        dataset = H5Dcreate2(location, objectName(name).constData(), storedTypeOf(kind), space.get(),
                             links.get(), properties.get(), H5P_DEFAULT);
    if (dataset < 0)
        setLibraryError(QStringLiteral("Unable to create dataset %1").arg(name));
    return dataset;
}

hid_t HDF5Writer_V6::create1D(hid_t location, ElementKind kind, const QString& name, hsize_t expectedLength)
{
    const hsize_t chunk = std::max<hsize_t>(1, std::min(expectedLength, MaximumStreamChunk));
    return createDataset(location, kind, name, 1, {H5S_UNLIMITED}, {chunk}, {0}, 0);
}

hid_t HDF5Writer_V6::createImageStack(hid_t location, const QString& name, int height, int width, int format,
                                      int bitCount, int deflateLevel)
{
    if (height <= 0 || width <= 0) {
        setError(QStringLiteral("Image stack %1: height and width must be positive").arg(name));
        return H5I_INVALID_HID;
    }
    const auto h = static_cast<hsize_t>(height);
    const auto w = static_cast<hsize_t>(width);
    const hid_t dataset = createDataset(location, ElementKind::UInt16, name, 3, {h, w, H5S_UNLIMITED},
                                        {h, w, 1}, {h, w, 0}, deflateLevel);
    if (dataset < 0)
        return H5I_INVALID_HID;
    if (!writeAttribute(dataset, FileDefinitions::BitCount, bitCount) ||
        !writeAttribute(dataset, FileDefinitions::Format, format) ||
        !writeAttribute(dataset, FileDefinitions::Height, height) ||
        !writeAttribute(dataset, FileDefinitions::Width, width)) {
        // A stack without its geometry would mislead every reader: take it away again.
        const QString reason = lastError();
        H5Dclose(dataset);
        H5Ldelete(location, objectName(name).constData(), H5P_DEFAULT);
        setError(reason);
        return H5I_INVALID_HID;
    }
    return dataset;
}

bool HDF5Writer_V6::writeRaw(hid_t dataset, ElementKind kind, const void* data,
                             const std::vector<hsize_t>& start, const std::vector<hsize_t>& count)
{
    if (!isValidDataset(dataset))
        return false;
    const HDF5Block block(dataset, start, count);
    if (!block.problem().isEmpty()) {
        setError(block.problem());
        return false;
    }
    if (!block.write(nativeTypeOf(kind), data)) {
        setLibraryError(QStringLiteral("Unable to write dataset %1").arg(pathOf(dataset)));
        return false;
    }
    return true;
}

bool HDF5Writer_V6::appendRaw(hid_t dataset, ElementKind kind, const void* data,
                              const std::vector<hsize_t>& count)
{
    const std::vector<hsize_t> dims = dimensions(dataset);
    if (dims.empty()) {
        if (isValidDataset(dataset))
            setError(QStringLiteral("Dataset %1 has no axis to grow").arg(pathOf(dataset)));
        return false;
    }
    const auto name = [dataset] { return pathOf(dataset); };
    if (count.size() != dims.size()) {
        setError(QStringLiteral("Dataset %1 has rank %2 but %3 counts were given")
                     .arg(name())
                     .arg(dims.size())
                     .arg(count.size()));
        return false;
    }
    if (!std::equal(dims.begin(), dims.end() - 1, count.begin())) {
        setError(
            QStringLiteral("Dataset %1: the appended block must match the extent on every axis but the last")
                .arg(name()));
        return false;
    }
    if (count.back() == 0)
        return true;
    const hsize_t maximum = maximumDimensions(dataset).back();
    if (count.back() > std::numeric_limits<hsize_t>::max() - dims.back() ||
        (maximum != H5S_UNLIMITED && dims.back() + count.back() > maximum)) {
        setError(
            QStringLiteral("Dataset %1 cannot grow beyond %2 on its last axis").arg(name()).arg(maximum));
        return false;
    }
    if (!data) {
        setError(QStringLiteral("No data to write"));
        return false;
    }
    std::vector<hsize_t> grown = dims;
    grown.back() += count.back();
    if (H5Dset_extent(dataset, grown.data()) < 0) {
        setLibraryError(QStringLiteral("Unable to extend dataset %1").arg(name()));
        return false;
    }
    // The block goes at the old end. Should this write fail, the grown extent is
    // left in place and its new elements read as the fill value (zero).
    std::vector<hsize_t> start(dims.size(), 0);
    start.back() = dims.back();
    return writeRaw(dataset, kind, data, start, count);
}

bool HDF5Writer_V6::flush()
{
    silenceLibraryErrors();
    if (!isOpen() || H5Iis_valid(m_file) <= 0) {
        setError(QStringLiteral("No file is open"));
        return false;
    }
    if (H5Fflush(m_file, H5F_SCOPE_LOCAL) < 0) {
        setLibraryError(QStringLiteral("Unable to flush file %1").arg(m_path));
        return false;
    }
    return true;
}

} // namespace zarvi
