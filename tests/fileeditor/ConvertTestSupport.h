#pragma once

#include <QDateTime>
#include <QStringList>
#include <QVariantMap>

#include <cstdint>
#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

#include "common/TempDir.h"
#include "datafile/HDF5Reader_V6.h"
#include "definitions/FileDefinitions.h"
#include "fileeditor/FileToolHelpers.h"
#include "fileeditor/TiffTestPages.h"

namespace zarvi::test {

/// The shape, chunking and attributes of one dataset, read back through the reader.
struct StoredDataset
{
    std::vector<hsize_t> dimensions;
    std::vector<hsize_t> maximum;
    std::vector<hsize_t> chunk;
    int deflate = -1;
    ElementType type;
    QVariantMap attributes;
    bool found = false;
};

inline StoredDataset storedDataset(const QString& file, const QString& path)
{
    StoredDataset stored;
    HDF5Reader_V6 reader;
    if (reader.open(file) < 0)
        return stored;
    const hid_t dataset = reader.openDataset(reader.fileId(), path);
    if (dataset < 0)
        return stored;
    stored.found = true;
    stored.dimensions = reader.dimensions(dataset);
    stored.maximum = reader.maximumDimensions(dataset);
    stored.chunk = reader.chunkDimensions(dataset);
    stored.deflate = reader.deflateLevel(dataset);
    stored.type = reader.elementType(dataset);
    stored.attributes = reader.readAllAttributes(dataset);
    reader.closeDataset(dataset);
    return stored;
}

/// Frame k of a stack, read by hyperslab, row by row.
inline std::vector<std::uint16_t> storedFrame(const QString& file, const QString& path, hsize_t k)
{
    std::vector<std::uint16_t> frame;
    HDF5Reader_V6 reader;
    if (reader.open(file) < 0)
        return frame;
    const hid_t dataset = reader.openDataset(reader.fileId(), path);
    const std::vector<hsize_t> dims = reader.dimensions(dataset);
    if (dims.size() == 3)
        reader.read(dataset, {0, 0, k}, {dims[0], dims[1], 1}, frame);
    reader.closeDataset(dataset);
    return frame;
}

template <typename T = double> std::vector<T> storedValues(const QString& file, const QString& path)
{
    std::vector<T> values;
    HDF5Reader_V6 reader;
    if (reader.open(file) < 0)
        return values;
    const hid_t dataset = reader.openDataset(reader.fileId(), path);
    if (dataset >= 0)
        reader.read(dataset, values);
    reader.closeDataset(dataset);
    return values;
}

inline bool pathExists(const QString& file, const QString& path)
{
    HDF5Reader_V6 reader;
    return reader.open(file) >= 0 && reader.exists(reader.fileId(), path);
}

/// The stored object a path reaches, and how many names (hard links) reach it: two paths
/// to one shared dataset give the same place and a count of 2 or more.
struct StoredObject
{
    QByteArray place;
    unsigned names = 0;
};

inline StoredObject storedObject(const QString& file, const QString& path)
{
    StoredObject object;
    HDF5Reader_V6 reader;
    if (reader.open(file) < 0)
        return object;
    const QByteArray name = path.toUtf8();
#if H5_VERSION_GE(1, 12, 0)
    H5O_info2_t info;
    if (H5Oget_info_by_name3(reader.fileId(), name.constData(), &info, H5O_INFO_BASIC, H5P_DEFAULT) < 0)
        return object;
    object.place = QByteArray(reinterpret_cast<const char*>(&info.token), sizeof(info.token));
#else
    H5O_info_t info;
    if (H5Oget_info_by_name2(reader.fileId(), name.constData(), &info, H5O_INFO_BASIC, H5P_DEFAULT) < 0)
        return object;
    object.place = QByteArray::number(static_cast<qulonglong>(info.addr));
#endif
    object.names = info.rc;
    return object;
}

/// Every name in the file, groups and datasets, in the library's name order.
inline QStringList allPaths(const QString& file)
{
    QStringList paths;
    HDF5Reader_V6 reader;
    if (reader.open(file) < 0)
        return paths;
    const auto visit = [](hid_t, const char* name, const H5L_info_t*, void* data) -> herr_t {
        static_cast<QStringList*>(data)->append(QString::fromUtf8(name));
        return 0;
    };
    H5Lvisit(reader.fileId(), H5_INDEX_NAME, H5_ITER_INC, visit, &paths);
    return paths;
}

inline QVariantMap rootAttributes(const QString& file)
{
    HDF5Reader_V6 reader;
    return reader.open(file) >= 0 ? reader.readAllAttributes(reader.fileId()) : QVariantMap();
}

/// The editing stamp a conversion leaves on the root.
inline void expectEditedStamp(const QString& file)
{
    const QVariantMap root = rootAttributes(file);
    EXPECT_EQ(root.value(FileDefinitions::EditingSoftwareName).toString(), QStringLiteral("zarvi"));
    EXPECT_EQ(root.value(FileDefinitions::EditingSoftwareVersion).toString(), QStringLiteral("2.0.8.1"));
    const QDateTime edited = QDateTime::fromString(root.value(FileDefinitions::Edited).toString());
    EXPECT_TRUE(edited.isValid());
    EXPECT_LE(std::abs(edited.secsTo(QDateTime::currentDateTime())), 120);
}

/// Writes 16-bit pages with libtiff and joins them into one multi-page file with tiffcp.
inline bool writeStackWithTiffcp(const TempDir& dir, const QString& stack, int width, int height, int frames,
                                 int bits = 16)
{
    QStringList pages;
    for (int k = 0; k < frames; ++k) {
        const QString page = dir.file(QStringLiteral("page%1.tif").arg(k));
        const std::vector<std::uint16_t> frame = testFrame(width, height, k, bits);
        std::vector<std::uint8_t> bytes(frame.begin(), frame.end());
        PageLayout layout{width, height, bits};
        if (!writeTiffPage(page, layout, bits == 8 ? static_cast<const void*>(bytes.data()) : frame.data()))
            return false;
        pages << page;
    }
    const ToolRun run = runTool(QStringLiteral("tiffcp"), pages + QStringList{stack});
    EXPECT_EQ(run.exitCode, 0) << run.output.toStdString();
    return run.exitCode == 0;
}

} // namespace zarvi::test
