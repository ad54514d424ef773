#include "common/TempDir.h"

#include "datafile/FileClassifier.h"
#include "datafile/HDF5Writer_V6.h"
#include "definitions/FileDefinitions.h"

#include <QFile>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <gtest/gtest.h>

using namespace zarvi;

namespace {

QString fileWithRootGroups(const test::TempDir& dir, const QString& name, const QStringList& groups)
{
    const QString path = dir.file(name);
    HDF5Writer_V6 writer;
    EXPECT_GE(writer.create(path), 0);
    for (const QString& group : groups)
        writer.closeGroup(writer.createGroup(writer.fileId(), group));
    return path;
}

} // namespace

TEST(FileClassifier, RootGroupsDecideHowAFileOpens)
{
    test::TempDir dir;
    const auto classify = [&](const QString& name, const QStringList& groups) {
        return FileClassifier::classify(fileWithRootGroups(dir, name, groups));
    };
    EXPECT_EQ(classify("e.orvel", {"ExperimentDesign", "DataAcquisition"}).kind, FileKind::Experiment);
    EXPECT_EQ(classify("a.orvel", {"DataAcquisition"}).kind, FileKind::Data);
    EXPECT_EQ(classify("c.orvel", {"DataConverted", "DataProcessed"}).kind, FileKind::Data);

    for (const QStringList& refused : {QStringList{"DataProcessed"}, QStringList{"DataAnalyzed"},
                                       QStringList{"Configurations"}, QStringList{}}) {
        const FileClassification result = classify("r.orvel", refused);
        EXPECT_EQ(result.kind, FileKind::Unrecognized);
        EXPECT_EQ(
            result.message,
            QStringLiteral("File type is unrecognized.<br>Please load a file that was created with ONS or "
                           "zarvi, otherwise please use Convert operation."));
        EXPECT_TRUE(result.detail.isEmpty());
    }

    QFile text(dir.file(QStringLiteral("notes.orvel")));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("not an HDF5 file\n");
    text.close();
    const FileClassification unreadable = FileClassifier::classify(text.fileName());
    EXPECT_EQ(unreadable.kind, FileKind::Unrecognized);
    EXPECT_FALSE(unreadable.detail.isEmpty());
    EXPECT_EQ(FileClassifier::classify(dir.file(QStringLiteral("missing.orvel"))).kind,
              FileKind::Unrecognized);
}

TEST(FileClassifier, AFileHeldByAnotherProgramIsSaidToBeInUse)
{
    test::TempDir dir;
    const QString path =
        fileWithRootGroups(dir, QStringLiteral("held.orvel"), {FileDefinitions::DataAcquisition});
    // Another program that writes the file holds the library's lock on it, as this does.
    const int held = ::open(QFile::encodeName(path).constData(), O_RDWR);
    ASSERT_GE(held, 0);
    ASSERT_EQ(::flock(held, LOCK_EX | LOCK_NB), 0);
    const FileClassification busy = FileClassifier::classify(path);
    ::close(held);
    EXPECT_EQ(busy.kind, FileKind::Unrecognized);
    EXPECT_EQ(busy.message,
              QStringLiteral("The file <b>%1</b> is in use by another program. Close it there and try again.")
                  .arg(path));
    EXPECT_EQ(FileClassifier::classify(path).kind, FileKind::Data);
}

TEST(FileClassifier, TabTitlesUseTheNameAfterTheLastSlash)
{
    EXPECT_EQ(FileClassifier::tabTitle(FileKind::Data, QStringLiteral("/home/u/rat1.orvel")),
              QStringLiteral("Data (rat1.orvel)"));
    EXPECT_EQ(FileClassifier::tabTitle(FileKind::Experiment, QStringLiteral("study.orvel")),
              QStringLiteral("Experiment (study.orvel)"));
}

TEST(FileClassifier, Version5DetectionRefusesVersion6AndConfigurationFiles)
{
    VersionCheck check =
        FileClassifier::checkVersion5(QVariantMap{{"SoftwareName", "zarvi"}, {"FileType", "Data"}});
    EXPECT_FALSE(check.accepted);
    EXPECT_EQ(check.title, QStringLiteral("Orvel File V6 (*.orvel)"));
    EXPECT_EQ(check.message,
              QStringLiteral("The loaded file has the latest version (V6) -- no conversion required."));

    for (const QVariantMap& attributes : {QVariantMap{{"FileType", "Configuration"}}, QVariantMap{},
                                          QVariantMap{{"SoftwareName", ""}, {"FileType", "data"}}}) {
        check = FileClassifier::checkVersion5(attributes);
        EXPECT_FALSE(check.accepted);
        EXPECT_EQ(check.title, QStringLiteral("Orvel File V5 (*.orvel)"));
        EXPECT_EQ(check.message,
                  QStringLiteral("The file contains configuration but not data -- nothing to convert."));
    }

    check = FileClassifier::checkVersion5(QVariantMap{{"FileType", "RawData"}});
    EXPECT_TRUE(check.accepted);
    EXPECT_TRUE(check.message.isEmpty());

    // A file we create carries "SoftwareName", so it is never taken for version 5.
    test::TempDir dir;
    EXPECT_FALSE(
        FileClassifier::checkVersion5(fileWithRootGroups(dir, "v6.orvel", {"DataAcquisition"})).accepted);
}
