#include "datafile/HDF5Manager_V6.h"

#include "datafile/HDF5Handle.h"
#include "datafile/JournaledFileDriver.h"
#include "datafile/RollbackJournal.h"
#include "datafile/SuperblockRepair.h"
#include "definitions/FileDefinitions.h"

#include <QFile>
#include <QFileInfo>

namespace zarvi {

namespace {

#if H5_VERSION_GE(1, 12, 0)
using LinkInfo = H5L_info2_t;
#else
using LinkInfo = H5L_info_t;
#endif

herr_t collectLinkName(hid_t, const char* name, const LinkInfo*, void* names)
{
    static_cast<QStringList*>(names)->append(QString::fromUtf8(name));
    return 0;
}

herr_t keepInnermostMessage(unsigned n, const H5E_error2_t* error, void* text)
{
    if (n == 0 && error->desc)
        *static_cast<QString*>(text) = QString::fromUtf8(error->desc);
    return 0;
}

/// Why path cannot be opened as a data file, empty when it can. The plain
/// file-system checks come first: they give clearer reasons than the library.
QString fileProblem(const QString& path, bool readOnly)
{
    const QFileInfo info(path);
    if (!info.exists())
        return QStringLiteral("File not found: %1").arg(path);
    if (info.isDir())
        return QStringLiteral("Not a file but a folder: %1").arg(path);
    if (!info.isReadable() || (!readOnly && !info.isWritable()))
        return QStringLiteral("No permission to %1 file: %2").arg(readOnly ? "read" : "write", path);
    if (!readOnly && !QFileInfo(info.absolutePath()).isWritable())
        return QStringLiteral("No permission to write in the folder of %1 (a file being written keeps its "
                              "rollback journal next to it)")
            .arg(path);
    if (info.size() == 0)
        return QStringLiteral("File is empty: %1").arg(path);
#if H5_VERSION_GE(1, 12, 0)
    const htri_t isHdf5 = H5Fis_accessible(QFile::encodeName(path).constData(), H5P_DEFAULT);
#else
    const htri_t isHdf5 = H5Fis_hdf5(QFile::encodeName(path).constData());
#endif
    if (isHdf5 <= 0)
        return QStringLiteral("Not an HDF5 file: %1").arg(path);
    return {};
}

} // namespace

HDF5Manager_V6::HDF5Manager_V6()
{
    silenceLibraryErrors();
}

HDF5Manager_V6::~HDF5Manager_V6()
{
    closeFile();
}

void HDF5Manager_V6::silenceLibraryErrors()
{
    thread_local bool silenced = false;
    if (!silenced) {
        H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
        silenced = true;
    }
}

bool HDF5Manager_V6::libraryMatchesHeaders(QString* message)
{
    unsigned major = 0, minor = 0, release = 0;
    const bool ok = H5get_libversion(&major, &minor, &release) >= 0 && major == H5_VERS_MAJOR &&
                    minor == H5_VERS_MINOR && release == H5_VERS_RELEASE;
    if (!ok && message)
        *message = QStringLiteral(
                       "HDF5 library %1.%2.%3 does not match the headers %4.%5.%6 the program was built with")
                       .arg(major)
                       .arg(minor)
                       .arg(release)
                       .arg(H5_VERS_MAJOR)
                       .arg(H5_VERS_MINOR)
                       .arg(H5_VERS_RELEASE);
    return ok;
}

hid_t HDF5Manager_V6::open(const QString& path, bool readOnly)
{
    silenceLibraryErrors();
    closeFile();
    m_fileInUse = false;
    QString problem;
    if (libraryMatchesHeaders(&problem) && !rollBackInterruptedRun(path))
        return H5I_INVALID_HID;
    if (problem.isEmpty())
        problem = fileProblem(path, readOnly);
    if (!problem.isEmpty()) {
        setError(problem);
        return H5I_INVALID_HID;
    }
    const QByteArray name = QFile::encodeName(path);
    const HDF5Handle access(H5Pcreate(H5P_FILE_ACCESS), H5Pclose);
    if (!readOnly && !JournaledFileDriver::use(access.get())) {
        setLibraryError(QStringLiteral("Unable to set up file access for %1").arg(path));
        return H5I_INVALID_HID;
    }
    const hid_t file = H5Fopen(name.constData(), readOnly ? H5F_ACC_RDONLY : H5F_ACC_RDWR, access.get());
    if (file < 0) {
        setLibraryError(QStringLiteral("Unable to open file (damaged, truncated or in use): %1").arg(path));
        // The library locks the files it opens; a lock held elsewhere is not damage.
        m_fileInUse = lastError().contains(QStringLiteral("unable to lock file"));
        if (m_fileInUse)
            setError(FileDefinitions::fileInUseMessage().arg(path));
        else if (SuperblockRepair::looksInterrupted(path))
            setError(SuperblockRepair::damagedMessage(path));
        return H5I_INVALID_HID;
    }
    m_file = file;
    m_path = path;
    return file;
}

bool HDF5Manager_V6::rollBackInterruptedRun(const QString& path)
{
    QString message;
    switch (RollbackJournal::recover(path, message)) {
    case RollbackJournal::Recovery::None:
    case RollbackJournal::Recovery::RolledBack:
        return true;
    case RollbackJournal::Recovery::InUse:
        m_fileInUse = true;
        setError(FileDefinitions::fileInUseMessage().arg(path));
        return false;
    case RollbackJournal::Recovery::Failed:
        setError(message);
        return false;
    }
    return false;
}

void HDF5Manager_V6::closeFile()
{
    if (m_file < 0)
        return;
    silenceLibraryErrors();
    if (H5Iis_valid(m_file) > 0) {
        // With the default close degree the file stays open while any object opened
        // through it is; close those so the file is really released.
        const unsigned types =
            H5F_OBJ_DATASET | H5F_OBJ_GROUP | H5F_OBJ_DATATYPE | H5F_OBJ_ATTR | H5F_OBJ_LOCAL;
        const ssize_t count = H5Fget_obj_count(m_file, types);
        if (count > 0) {
            std::vector<hid_t> ids(static_cast<std::size_t>(count));
            const ssize_t found = H5Fget_obj_ids(m_file, types, ids.size(), ids.data());
            for (ssize_t i = 0; i < found; ++i) {
                if (H5Iget_type(ids[i]) == H5I_ATTR)
                    H5Aclose(ids[i]);
                else
                    H5Oclose(ids[i]);
            }
        }
        H5Fclose(m_file);
    }
    m_file = H5I_INVALID_HID;
    m_path.clear();
}

namespace {

bool closeChecked(hid_t id, H5I_type_t type, herr_t (*closer)(hid_t), QString& error, const char* what)
{
    if (H5Iis_valid(id) > 0 && H5Iget_type(id) == type && closer(id) >= 0)
        return true;
    error = QStringLiteral("Not an open %1").arg(QLatin1String(what));
    return false;
}

} // namespace

bool HDF5Manager_V6::closeGroup(hid_t id)
{
    silenceLibraryErrors();
    return closeChecked(id, H5I_GROUP, H5Gclose, m_lastError, "group");
}

bool HDF5Manager_V6::closeDataset(hid_t id)
{
    silenceLibraryErrors();
    return closeChecked(id, H5I_DATASET, H5Dclose, m_lastError, "dataset");
}

bool HDF5Manager_V6::closeDataspace(hid_t id)
{
    silenceLibraryErrors();
    return closeChecked(id, H5I_DATASPACE, H5Sclose, m_lastError, "dataspace");
}

bool HDF5Manager_V6::closePropertyList(hid_t id)
{
    silenceLibraryErrors();
    return closeChecked(id, H5I_GENPROP_LST, H5Pclose, m_lastError, "property list");
}

bool HDF5Manager_V6::closeAttribute(hid_t id)
{
    silenceLibraryErrors();
    return closeChecked(id, H5I_ATTR, H5Aclose, m_lastError, "attribute");
}

bool HDF5Manager_V6::isValidLocation(hid_t location) const
{
    silenceLibraryErrors();
    if (H5Iis_valid(location) > 0) {
        const H5I_type_t type = H5Iget_type(location);
        if (type == H5I_FILE || type == H5I_GROUP || type == H5I_DATASET)
            return true;
    }
    setError(QStringLiteral("Not an open file, group or dataset"));
    return false;
}

bool HDF5Manager_V6::isValidDataset(hid_t dataset) const
{
    silenceLibraryErrors();
    if (H5Iis_valid(dataset) > 0 && H5Iget_type(dataset) == H5I_DATASET)
        return true;
    setError(QStringLiteral("Not an open dataset"));
    return false;
}

void HDF5Manager_V6::setLibraryError(const QString& text) const
{
    QString reason;
    H5Ewalk2(H5E_DEFAULT, H5E_WALK_UPWARD, keepInnermostMessage, &reason);
    setError(reason.isEmpty() ? text : QStringLiteral("%1 (%2)").arg(text, reason));
}

QString HDF5Manager_V6::pathOf(hid_t object)
{
    const ssize_t length = H5Iget_name(object, nullptr, 0);
    if (length <= 0)
        return QStringLiteral("(unnamed)");
    QByteArray name(static_cast<qsizetype>(length) + 1, '\0');
    H5Iget_name(object, name.data(), static_cast<size_t>(name.size()));
    name.truncate(static_cast<qsizetype>(length));
    return QString::fromUtf8(name);
}

bool HDF5Manager_V6::exists(hid_t location, const QString& path) const
{
    if (!isValidLocation(location))
        return false;
    const QByteArray bytes = objectName(path);
    if (bytes.isEmpty())
        return false;
    // Ask about each level in turn: the library reports an error, not "no", for a
    // path whose parent is missing.
    qsizetype from = bytes.startsWith('/') ? 1 : 0;
    while (from < bytes.size()) {
        const qsizetype slash = bytes.indexOf('/', from);
        const QByteArray prefix = slash < 0 ? bytes : bytes.left(slash);
        if (slash != from && H5Lexists(location, prefix.constData(), H5P_DEFAULT) <= 0)
            return false;
        if (slash < 0)
            break;
        from = slash + 1;
    }
    return true;
}

ObjectKind HDF5Manager_V6::objectKind(hid_t location, const QString& path) const
{
    if (!exists(location, path))
        return ObjectKind::Missing;
#if H5_VERSION_GE(1, 12, 0)
    H5O_info2_t info;
    const herr_t status =
        H5Oget_info_by_name3(location, objectName(path).constData(), &info, H5O_INFO_BASIC, H5P_DEFAULT);
#else
    H5O_info_t info;
    const herr_t status =
        H5Oget_info_by_name2(location, objectName(path).constData(), &info, H5O_INFO_BASIC, H5P_DEFAULT);
#endif
    if (status < 0)
        return ObjectKind::Missing; // a soft link whose target is gone
    switch (info.type) {
    case H5O_TYPE_GROUP:
        return ObjectKind::Group;
    case H5O_TYPE_DATASET:
        return ObjectKind::Dataset;
    default:
        return ObjectKind::Other;
    }
}

QStringList HDF5Manager_V6::children(hid_t group) const
{
    QStringList names;
    if (!isValidLocation(group))
        return names;
    hsize_t index = 0;
#if H5_VERSION_GE(1, 12, 0)
    const herr_t status = H5Literate2(group, H5_INDEX_NAME, H5_ITER_INC, &index, collectLinkName, &names);
#else
    const herr_t status = H5Literate(group, H5_INDEX_NAME, H5_ITER_INC, &index, collectLinkName, &names);
#endif
    if (status < 0) {
        setLibraryError(QStringLiteral("Unable to list the members of %1").arg(pathOf(group)));
        return {};
    }
    return names;
}

hid_t HDF5Manager_V6::openGroup(hid_t location, const QString& path)
{
    if (!isValidLocation(location))
        return H5I_INVALID_HID;
    const ObjectKind kind = objectKind(location, path);
    if (kind != ObjectKind::Group) {
        setError(kind == ObjectKind::Missing ? QStringLiteral("Path not found in file: %1").arg(path)
                                             : QStringLiteral("Not a group: %1").arg(path));
        return H5I_INVALID_HID;
    }
    const hid_t group = H5Gopen2(location, objectName(path).constData(), H5P_DEFAULT);
    if (group < 0)
        setLibraryError(QStringLiteral("Unable to open group %1").arg(path));
    return group;
}

hid_t HDF5Manager_V6::openDataset(hid_t location, const QString& path)
{
    return openDataset(location, path, H5P_DEFAULT);
}

hid_t HDF5Manager_V6::openDatasetForWholeRead(hid_t location, const QString& path)
{
    const HDF5Handle access(H5Pcreate(H5P_DATASET_ACCESS), H5Pclose);
    if (!access.valid() ||
        H5Pset_chunk_cache(access.get(), H5D_CHUNK_CACHE_NSLOTS_DEFAULT, 0, H5D_CHUNK_CACHE_W0_DEFAULT) < 0)
        return openDataset(location, path);
    return openDataset(location, path, access.get());
}

hid_t HDF5Manager_V6::openDataset(hid_t location, const QString& path, hid_t access)
{
    if (!isValidLocation(location))
        return H5I_INVALID_HID;
    const ObjectKind kind = objectKind(location, path);
    if (kind != ObjectKind::Dataset) {
        setError(kind == ObjectKind::Missing ? QStringLiteral("Path not found in file: %1").arg(path)
                                             : QStringLiteral("Not a dataset: %1").arg(path));
        return H5I_INVALID_HID;
    }
    const hid_t dataset = H5Dopen2(location, objectName(path).constData(), access);
    if (dataset < 0)
        setLibraryError(QStringLiteral("Unable to open dataset %1").arg(path));
    return dataset;
}

} // namespace zarvi
