#include "ConvertTestSupport.h"

#include <QFile>

#include <cstring>

#include <hdf5.h>

#include "datafile/HDF5Writer_V6.h"
#include "fileeditor/Version5Converter.h"

namespace zarvi {
namespace {

/// A file as the previous version wrote it, made with the HDF5 library directly: root
/// attributes as fixed-length strings, a configuration group and data groups.
void writeVersion5File(const QString& path, const char* fileType, bool withData)
{
    const hid_t file =
        H5Fcreate(QFile::encodeName(path).constData(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
    ASSERT_GE(file, 0);
    if (fileType) {
        const hid_t type = H5Tcopy(H5T_C_S1);
        H5Tset_size(type, std::strlen(fileType));
        const hid_t space = H5Screate(H5S_SCALAR);
        const hid_t attribute = H5Acreate2(file, "FileType", type, space, H5P_DEFAULT, H5P_DEFAULT);
        H5Awrite(attribute, type, fileType);
        H5Aclose(attribute);
        H5Sclose(space);
        H5Tclose(type);
    }
    H5Gclose(H5Gcreate2(file, "Configurations", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
    if (withData) {
        const hid_t group = H5Gcreate2(file, "DataAcquisition", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
        const hsize_t n = 4;
        const double values[] = {0.5, 1.5, -2.25, 8.0};
        const hid_t space = H5Screate_simple(1, &n, nullptr);
        const hid_t dataset =
            H5Dcreate2(group, "AIN1", H5T_IEEE_F64LE, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
        H5Dwrite(dataset, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, values);
        H5Dclose(dataset);
        H5Sclose(space);
        H5Gclose(group);
        H5Gclose(H5Gcreate2(file, "Notes", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
    }
    H5Fclose(file);
}

TEST(Version5Converter, RefusesVersion6AndConfigurationOnlyFilesWithTheirTitles)
{
    test::TempDir dir;
    const QString v6 = dir.file(QStringLiteral("current.orvel"));
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.create(v6), 0);
    }
    ConversionResult result = Version5Converter::convert({v6, dir.file(QStringLiteral("a.orvel"))});
    EXPECT_TRUE(result.refused);
    EXPECT_EQ(result.title, QStringLiteral("Orvel File V6 (*.orvel)"));
    EXPECT_EQ(result.error,
              QStringLiteral("The loaded file has the latest version (V6) -- no conversion required."));

    const QString configuration = dir.file(QStringLiteral("configuration.orvel"));
    writeVersion5File(configuration, "Configuration", false);
    result = Version5Converter::convert({configuration, dir.file(QStringLiteral("b.orvel"))});
    EXPECT_TRUE(result.refused);
    EXPECT_EQ(result.title, QStringLiteral("Orvel File V5 (*.orvel)"));
    EXPECT_EQ(result.error,
              QStringLiteral("The file contains configuration but not data -- nothing to convert."));

    const QString untyped = dir.file(QStringLiteral("untyped.orvel"));
    writeVersion5File(untyped, nullptr, true);
    result = Version5Converter::convert({untyped, dir.file(QStringLiteral("c.orvel"))});
    EXPECT_TRUE(result.refused);
    EXPECT_EQ(result.title, QStringLiteral("Orvel File V5 (*.orvel)"));
    EXPECT_EQ(result.error,
              QStringLiteral("The file contains configuration but not data -- nothing to convert."));

    for (const char* name : {"a.orvel", "b.orvel", "c.orvel"})
        EXPECT_FALSE(QFileInfo::exists(dir.file(QString::fromLatin1(name))));
}

TEST(Version5Converter, CopiesDataGroupsOfAcceptedFileIntoNewVersion6File)
{
    test::TempDir dir;
    const QString old = dir.file(QStringLiteral("mouse1.orvel"));
    writeVersion5File(old, "DataFile", true);

    const ConversionResult result = Version5Converter::convert({old, QString()});
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    const QString copy = dir.file(QStringLiteral("mouse1_V6.orvel"));
    EXPECT_EQ(QFileInfo(result.filepath).absoluteFilePath(), QFileInfo(copy).absoluteFilePath());
    EXPECT_EQ(result.datapaths, (QStringList{QStringLiteral("DataAcquisition"), QStringLiteral("Notes")}));
    EXPECT_EQ(
        result.notes.last(),
        QStringLiteral("<b>%1</b> is a version-5 data file. Its groups <b>DataAcquisition</b>, <b>Notes</b> "
                       "were copied as they are into the new version-6 file <b>%2</b>, without "
                       "\"Configurations\". Their contents keep the version-5 layout: they are not "
                       "rearranged into version-6 paths.")
            .arg(old, result.filepath));
    EXPECT_EQ(test::storedValues(copy, QStringLiteral("DataAcquisition/AIN1")),
              (std::vector<double>{0.5, 1.5, -2.25, 8.0}));
    EXPECT_FALSE(test::pathExists(copy, QStringLiteral("Configurations")));
    const QVariantMap root = test::rootAttributes(copy);
    EXPECT_EQ(root.value(FileDefinitions::SoftwareName).toString(), QStringLiteral("zarvi"));
    test::expectEditedStamp(copy);

    // The copy is never written over.
    const ConversionResult again = Version5Converter::convert({old, copy});
    EXPECT_EQ(
        again.error,
        QStringLiteral("<b>%1</b> already exists; a version-5 file is copied into a new file.").arg(copy));
}

} // namespace
} // namespace zarvi
