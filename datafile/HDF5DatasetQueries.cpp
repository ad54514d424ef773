#include "datafile/HDF5Manager_V6.h"

#include "datafile/HDF5AttributeValue.h"
#include "datafile/HDF5Block.h"
#include "datafile/HDF5Handle.h"
#include "datafile/MemoryBudget.h"
#include "datafile/ParallelChunkRead.h"

#include <limits>

// The dataset and attribute queries of HDF5Manager_V6: extents, chunking, element
// types, the checked reads, and attribute reading. The file and structure operations
// are in HDF5Manager_V6.cpp.

namespace zarvi {

namespace {

herr_t collectAttributeName(hid_t, const char* name, const H5A_info_t*, void* names)
{
    static_cast<QStringList*>(names)->append(QString::fromUtf8(name));
    return 0;
}

std::vector<hsize_t> extentOf(hid_t space, bool maximum = false)
{
    const int rank = H5Sget_simple_extent_ndims(space);
    if (rank <= 0)
        return {};
    std::vector<hsize_t> dims(static_cast<std::size_t>(rank));
    std::vector<hsize_t> maxDims(dims.size());
    if (H5Sget_simple_extent_dims(space, dims.data(), maxDims.data()) < 0)
        return {};
    return maximum ? maxDims : dims;
}

/// Deflate turns at most about 1032 bytes into one (a long run of one byte value);
/// a stored size that would need more than this to reach the declared one is damage.
constexpr hsize_t MaxExpansion = 1100;

/// True when every filter of the dataset is one whose expansion MaxExpansion bounds:
/// deflate, and the shuffle and checksum filters that do not change the size.
bool hasBoundedExpansion(hid_t properties)
{
    const int count = H5Pget_nfilters(properties);
    for (int i = 0; i < count; ++i) {
        unsigned flags = 0;
        std::size_t elements = 0;
        unsigned configuration = 0;
        const H5Z_filter_t filter = H5Pget_filter2(properties, static_cast<unsigned>(i), &flags, &elements,
                                                   nullptr, 0, nullptr, &configuration);
        if (filter != H5Z_FILTER_DEFLATE && filter != H5Z_FILTER_SHUFFLE && filter != H5Z_FILTER_FLETCHER32)
            return false;
    }
    return count >= 0;
}

} // namespace

std::vector<hsize_t> HDF5Manager_V6::dimensions(hid_t dataset) const
{
    if (!isValidDataset(dataset))
        return {};
    const HDF5Handle space(H5Dget_space(dataset), H5Sclose);
    return extentOf(space.get());
}

std::vector<hsize_t> HDF5Manager_V6::maximumDimensions(hid_t dataset) const
{
    if (!isValidDataset(dataset))
        return {};
    const HDF5Handle space(H5Dget_space(dataset), H5Sclose);
    return extentOf(space.get(), true);
}

std::vector<hsize_t> HDF5Manager_V6::chunkDimensions(hid_t dataset) const
{
    if (!isValidDataset(dataset))
        return {};
    const HDF5Handle properties(H5Dget_create_plist(dataset), H5Pclose);
    if (H5Pget_layout(properties.get()) != H5D_CHUNKED)
        return {};
    const int rank = H5Pget_chunk(properties.get(), 0, nullptr);
    if (rank <= 0)
        return {};
    std::vector<hsize_t> chunk(static_cast<std::size_t>(rank));
    if (H5Pget_chunk(properties.get(), rank, chunk.data()) < 0)
        return {};
    return chunk;
}

int HDF5Manager_V6::deflateLevel(hid_t dataset) const
{
    if (!isValidDataset(dataset))
        return 0;
    const HDF5Handle properties(H5Dget_create_plist(dataset), H5Pclose);
    const int filters = H5Pget_nfilters(properties.get());
    for (int i = 0; i < filters; ++i) {
        unsigned flags = 0;
        size_t valueCount = 1;
        unsigned values[1] = {0};
        unsigned config = 0;
        if (H5Pget_filter2(properties.get(), static_cast<unsigned>(i), &flags, &valueCount, values, 0,
                           nullptr, &config) == H5Z_FILTER_DEFLATE)
            return valueCount > 0 ? static_cast<int>(values[0]) : 0;
    }
    return 0;
}

bool HDF5Manager_V6::checkStoredExtent(hid_t dataset) const
{
    if (!isValidDataset(dataset))
        return false;
    const HDF5Handle type(H5Dget_type(dataset), H5Tclose);
    const std::vector<hsize_t> dims = dimensions(dataset);
    std::uint64_t declared = H5Tget_size(type.get());
    for (const hsize_t d : dims)
        declared = MemoryBudget::product({declared, d});
    if (declared == 0)
        return true;
    const HDF5Handle properties(H5Dget_create_plist(dataset), H5Pclose);
    const bool plain = H5Pget_nfilters(properties.get()) == 0;
    if (!plain && !hasBoundedExpansion(properties.get()))
        return true;
    const hsize_t stored = H5Dget_storage_size(dataset);
    const std::uint64_t reachable = plain ? stored : MemoryBudget::product({stored, MaxExpansion});
    if (reachable >= declared)
        return true;
    QStringList sizes;
    for (const hsize_t d : dims)
        sizes << QString::number(d);
    setError(
        QStringLiteral("Dataset %1 declares %2 values (%3 bytes) but the file holds only %4 bytes of them")
            .arg(pathOf(dataset), sizes.join(QStringLiteral(" x ")))
            .arg(declared)
            .arg(stored));
    return false;
}

hsize_t HDF5Manager_V6::storageSize(hid_t dataset) const
{
    return isValidDataset(dataset) ? H5Dget_storage_size(dataset) : 0;
}

ElementType HDF5Manager_V6::elementType(hid_t dataset) const
{
    ElementType result;
    if (!isValidDataset(dataset))
        return result;
    const HDF5Handle type(H5Dget_type(dataset), H5Tclose);
    result.size = H5Tget_size(type.get());
    switch (H5Tget_class(type.get())) {
    case H5T_INTEGER:
        result.elementClass = ElementClass::Integer;
        result.isSigned = H5Tget_sign(type.get()) == H5T_SGN_2;
        break;
    case H5T_FLOAT:
        result.elementClass = ElementClass::Float;
        result.isSigned = true;
        break;
    case H5T_STRING:
        result.elementClass = ElementClass::String;
        break;
    default:
        break;
    }
    return result;
}

bool HDF5Manager_V6::checkReadable(hid_t dataset, const std::vector<hsize_t>& count, std::size_t elementBytes,
                                   std::size_t held, hsize_t& elements)
{
    elements = 0;
    if (!isValidDataset(dataset))
        return false;
    const auto name = [dataset] { return pathOf(dataset); };
    // Only the sizes are checked here, cheaply: the block's place in the extent is
    // checked when it is selected for the read itself.
    const std::vector<hsize_t> dims = dimensions(dataset);
    if (dims.size() != count.size()) {
        setError(QStringLiteral("Dataset %1 has rank %2 but the request has rank %3")
                     .arg(name())
                     .arg(dims.size())
                     .arg(count.size()));
        return false;
    }
    const HDF5Handle type(H5Dget_type(dataset), H5Tclose);
    const H5T_class_t typeClass = H5Tget_class(type.get());
    if (typeClass != H5T_INTEGER && typeClass != H5T_FLOAT) {
        setError(QStringLiteral("Dataset %1 does not hold numbers").arg(name()));
        return false;
    }
    // Refuse before allocating: a file may claim an extent that no machine can hold.
    constexpr hsize_t largest = std::numeric_limits<hsize_t>::max();
    hsize_t requested = 1;
    for (const hsize_t c : count)
        requested = c != 0 && requested > largest / c ? largest : requested * c;
    if (elementBytes != 0 && requested > largest / elementBytes) {
        setError(
            QStringLiteral("Dataset %1 is too large to read (more than %2 bytes)").arg(name()).arg(largest));
        return false;
    }
    const hsize_t bytes = requested * elementBytes;
    if (requested > static_cast<hsize_t>(std::numeric_limits<std::ptrdiff_t>::max()) ||
        (requested > held && bytes > MemoryBudget::availableBytes())) {
        setError(QStringLiteral("Dataset %1 is too large to read (%2 bytes)").arg(name()).arg(bytes));
        return false;
    }
    // A whole read allocates what the file declares; a damaged or crafted file may
    // declare far more than it stores. (Partial reads allocate only their block, and are
    // not checked: the stored size of a chunked dataset costs a walk over its chunk index.)
    hsize_t extent = 1;
    for (const hsize_t d : dims)
        extent = d != 0 && extent > largest / d ? largest : extent * d;
    if (requested == extent && !checkStoredExtent(dataset))
        return false;
    elements = requested;
    return true;
}

bool HDF5Manager_V6::readRaw(hid_t dataset, ElementKind kind, const std::vector<hsize_t>& start,
                             const std::vector<hsize_t>& count, void* out)
{
    if (!isValidDataset(dataset))
        return false;
    const HDF5Block block(dataset, start, count);
    if (!block.problem().isEmpty()) {
        setError(block.problem());
        return false;
    }
    if (count.size() == 1 && start[0] == 0 && dimensions(dataset) == count &&
        ParallelChunkRead::read(dataset, nativeTypeOf(kind), static_cast<std::size_t>(count[0]), out))
        return true;
    if (!block.read(nativeTypeOf(kind), out)) {
        setLibraryError(QStringLiteral("Unable to read dataset %1").arg(pathOf(dataset)));
        return false;
    }
    return true;
}

QVariant HDF5Manager_V6::readAttribute(hid_t location, const QString& name) const
{
    if (!isValidLocation(location))
        return {};
    if (!attributeExists(location, name)) {
        setError(QStringLiteral("Attribute not found: %1").arg(name));
        return {};
    }
    const HDF5Handle attribute(H5Aopen(location, objectName(name).constData(), H5P_DEFAULT), H5Aclose);
    const QVariant value = attribute.valid() ? HDF5AttributeValue::read(attribute.get()) : QVariant();
    if (!value.isValid())
        setLibraryError(QStringLiteral("Unable to read attribute %1: unsupported type").arg(name));
    return value;
}

QVariantMap HDF5Manager_V6::readAllAttributes(hid_t location) const
{
    QVariantMap values;
    if (!isValidLocation(location))
        return values;
    QStringList names;
    hsize_t index = 0;
    if (H5Aiterate2(location, H5_INDEX_NAME, H5_ITER_INC, &index, collectAttributeName, &names) < 0) {
        setLibraryError(QStringLiteral("Unable to list the attributes of %1").arg(pathOf(location)));
        return values;
    }
    // Attributes of a type we cannot read are left out; lastError() names the last one.
    for (const QString& name : names) {
        const QVariant value = readAttribute(location, name);
        if (value.isValid())
            values.insert(name, value);
    }
    return values;
}

bool HDF5Manager_V6::attributeExists(hid_t location, const QString& name) const
{
    if (!isValidLocation(location) || name.isEmpty())
        return false;
    return H5Aexists(location, objectName(name).constData()) > 0;
}

std::vector<hsize_t> HDF5Manager_V6::attributeDimensions(hid_t location, const QString& name) const
{
    if (!attributeExists(location, name))
        return {};
    const HDF5Handle attribute(H5Aopen(location, objectName(name).constData(), H5P_DEFAULT), H5Aclose);
    const HDF5Handle space(H5Aget_space(attribute.get()), H5Sclose);
    return extentOf(space.get());
}

} // namespace zarvi
