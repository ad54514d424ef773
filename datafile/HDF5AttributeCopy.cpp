#include "datafile/HDF5Writer_V6.h"

#include "datafile/HDF5Handle.h"

#include <QByteArray>

#include <vector>

// HDF5Writer_V6::copyAttributes, kept apart from the writer's other operations. The
// attributes go across byte for byte in their stored type, so that no kind the
// reader does not handle (compound, enum, fixed-length strings) is lost on the way.

namespace zarvi {

namespace {

struct CopyState
{
    hid_t destination;
    QByteArray failedName;
};

herr_t collectName(hid_t, const char* name, const H5A_info_t*, void* data)
{
    static_cast<std::vector<QByteArray>*>(data)->emplace_back(name);
    return 0;
}

bool copyOne(hid_t source, const char* name, const H5A_info_t* info, hid_t destination)
{
    const HDF5Handle from(H5Aopen(source, name, H5P_DEFAULT), H5Aclose);
    if (!from.valid())
        return false;
    const HDF5Handle type(H5Aget_type(from.get()), H5Tclose);
    const HDF5Handle space(H5Aget_space(from.get()), H5Sclose);
    const hssize_t elements = space.valid() ? H5Sget_simple_extent_npoints(space.get()) : -1;
    const size_t elementSize = type.valid() ? H5Tget_size(type.get()) : 0;
    if (elements < 0 || elementSize == 0)
        return false;
    std::vector<unsigned char> buffer(static_cast<std::size_t>(elements) * elementSize);
    if (H5Aread(from.get(), type.get(), buffer.data()) < 0)
        return false;
    const HDF5Handle creation(H5Pcreate(H5P_ATTRIBUTE_CREATE), H5Pclose);
    H5Pset_char_encoding(creation.get(), info->cset);
    const HDF5Handle to(H5Acreate2(destination, name, type.get(), space.get(), creation.get(), H5P_DEFAULT),
                        H5Aclose);
    const bool written = to.valid() && H5Awrite(to.get(), type.get(), buffer.data()) >= 0;
    // Variable-length values (strings) were allocated by the library while reading.
    if (H5Tdetect_class(type.get(), H5T_VLEN) > 0 || H5Tis_variable_str(type.get()) > 0)
        H5Dvlen_reclaim(type.get(), space.get(), H5P_DEFAULT, buffer.data());
    return written;
}

herr_t copyNamed(hid_t source, const char* name, const H5A_info_t* info, void* data)
{
    auto* state = static_cast<CopyState*>(data);
    if (copyOne(source, name, info, state->destination))
        return 0;
    state->failedName = name;
    return -1;
}

} // namespace

bool HDF5Writer_V6::copyAttributes(hid_t source, hid_t destination)
{
    if (!isValidLocation(source) || !isValidLocation(destination))
        return false;
    std::vector<QByteArray> existing;
    hsize_t index = 0;
    if (H5Aiterate2(destination, H5_INDEX_NAME, H5_ITER_INC, &index, collectName, &existing) < 0) {
        setLibraryError(QStringLiteral("Unable to list the attributes of %1").arg(pathOf(destination)));
        return false;
    }
    for (const QByteArray& name : existing) {
        if (H5Adelete(destination, name.constData()) < 0) {
            setLibraryError(QStringLiteral("Unable to delete attribute %1").arg(QString::fromUtf8(name)));
            return false;
        }
    }
    CopyState state{destination, {}};
    index = 0;
    if (H5Aiterate2(source, H5_INDEX_NAME, H5_ITER_INC, &index, copyNamed, &state) < 0) {
        setLibraryError(QStringLiteral("Unable to copy attribute %1 of %2")
                            .arg(QString::fromUtf8(state.failedName), pathOf(source)));
        return false;
    }
    return true;
}

} // namespace zarvi
