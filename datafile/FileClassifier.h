#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace zarvi {

/// What opening a file finds it to be.
enum class FileKind
{
    Experiment,
    Data,
    Unrecognized
};

/// Outcome of classifying a file by its root groups. `message` is the user text
/// for a refused file; `detail` says why a file could not be read at all.
struct FileClassification
{
    FileKind kind = FileKind::Unrecognized;
    QStringList rootGroups;
    QString message;
    QString detail;
};

/// Outcome of checking whether a file is a version-5 data file to convert.
struct VersionCheck
{
    bool accepted = false;
    QString title;
    QString message;
};

/// Decides how a file is opened (experiment, data, refused) and whether the
/// converter accepts it as a version-5 file. Pure functions over a read-only
/// open of the file; callable from any thread.
class FileClassifier
{
public:
    /// Experiment wins over data; a file holding only processed or analysed
    /// results is refused on purpose (a data file must hold raw or converted data).
    static FileKind classifyRootGroups(const QStringList& rootGroups);
    static FileClassification classify(const QString& path);

    static VersionCheck checkVersion5(const QVariantMap& rootAttributes);
    static VersionCheck checkVersion5(const QString& path);

    /// Tab title: the pattern filled with the part of the path after its last "/".
    static QString tabTitle(FileKind kind, const QString& path);
};

} // namespace zarvi
