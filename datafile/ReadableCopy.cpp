#include "datafile/ReadableCopy.h"

#include "datafile/HDF5Handle.h"
#include "datafile/HDF5Writer_V6.h"

#include <QFile>
#include <QSet>

namespace zarvi {

namespace {

herr_t collectName(hid_t, const char* name, const H5L_info_t*, void* names)
{
    static_cast<QStringList*>(names)->push_back(QString::fromUtf8(name));
    return 0;
}

QString joined(const QString& prefix, const QString& name)
{
    return prefix.isEmpty() ? name : prefix + QLatin1Char('/') + name;
}

/// Where a group lies in the source file, the same through every hard link to it.
haddr_t placeOf(hid_t group)
{
    H5O_info_t info;
    return H5Oget_info2(group, &info, H5O_INFO_BASIC) < 0 ? HADDR_UNDEF : info.addr;
}

/// Copies the members of `source` into `target`; false only when the copy itself
/// cannot be written. What cannot be read goes into `leftOut`. `entered` holds the groups
/// gone into member by member: a hard link back to one of them (a cycle) is left out.
bool copyMembers(HDF5Writer_V6& copy, hid_t source, hid_t target, const QString& prefix, QStringList& leftOut,
                 QSet<haddr_t>& entered)
{
    QStringList names;
    hsize_t index = 0;
    // A listing that breaks off still gives the members before the break.
    if (H5Literate(source, H5_INDEX_NAME, H5_ITER_INC, &index, collectName, &names) < 0)
        leftOut << (prefix.isEmpty() ? QStringLiteral("/") : prefix) +
                       QStringLiteral(" (the members after %1 cannot be listed)").arg(index);
    for (const QString& name : names) {
        const QByteArray bytes = name.toUtf8();
        if (H5Ocopy(source, bytes.constData(), target, bytes.constData(), H5P_DEFAULT, H5P_DEFAULT) >= 0)
            continue;
        // A failed copy may have linked part of the object; the copy is sound, so it goes.
        if (H5Lexists(target, bytes.constData(), H5P_DEFAULT) > 0)
            H5Ldelete(target, bytes.constData(), H5P_DEFAULT);
        const QString path = joined(prefix, name);
        const HDF5Handle group(H5Gopen2(source, bytes.constData(), H5P_DEFAULT), H5Gclose);
        const HDF5Handle creation(group.valid() ? H5Gget_create_plist(group.get()) : -1, H5Pclose);
        const haddr_t place = group.valid() ? placeOf(group.get()) : HADDR_UNDEF;
        if (!creation.valid() || place == HADDR_UNDEF || entered.contains(place)) {
            leftOut << path;
            continue;
        }
        const HDF5Handle made(H5Gcreate2(target, bytes.constData(), H5P_DEFAULT, creation.get(), H5P_DEFAULT),
                              H5Gclose);
        if (!made.valid())
            return false;
        if (!copy.copyAttributes(group.get(), made.get()))
            leftOut << path + QStringLiteral(" (attributes)");
        entered.insert(place);
        if (!copyMembers(copy, group.get(), made.get(), path, leftOut, entered))
            return false;
    }
    return true;
}

} // namespace

bool ReadableCopy::write(const QString& sourcePath, const QString& copyPath, QStringList& leftOut,
                         QString& error)
{
    leftOut.clear();
    const HDF5Handle source(H5Fopen(QFile::encodeName(sourcePath).constData(), H5F_ACC_RDONLY, H5P_DEFAULT),
                            H5Fclose);
    const HDF5Handle sourceRoot(source.valid() ? H5Gopen2(source.get(), "/", H5P_DEFAULT) : -1, H5Gclose);
    if (!sourceRoot.valid()) {
        error = QStringLiteral("The file's root group cannot be read; there is nothing to copy.");
        return false;
    }
    HDF5Writer_V6 copy;
    if (copy.create(copyPath) < 0) {
        error = copy.lastError();
        return false;
    }
    if (!copy.copyAttributes(sourceRoot.get(), copy.fileId())) {
        error = QStringLiteral("The attributes of the file's root group cannot be read.");
        return false;
    }
    QSet<haddr_t> entered{placeOf(sourceRoot.get())};
    if (!copyMembers(copy, sourceRoot.get(), copy.fileId(), QString(), leftOut, entered) || !copy.flush()) {
        error = QStringLiteral("Unable to write the copy <b>%1</b>.").arg(copyPath);
        return false;
    }
    return true;
}

} // namespace zarvi
