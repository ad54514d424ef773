#include "app/FileCheck.h"

#include "definitions/DatasetDefinitions.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>

namespace zarvi {

namespace {

FileClassification damaged(const QString& path, const QString& detail)
{
    FileClassification result;
    result.message = DatasetDefinitions::damagedFileMessage().arg(QFileInfo(path).fileName().toHtmlEscaped());
    result.detail = detail;
    return result;
}

} // namespace

FileCheck::FileCheck(QString program) : m_program(std::move(program)) {}

QString FileCheck::programBesideApplication()
{
    const QDir folder(QCoreApplication::applicationDirPath());
    for (const QString& candidate : {QStringLiteral("zarvi-cli"), QStringLiteral("../cli/zarvi-cli")}) {
        const QFileInfo program(folder.filePath(candidate));
        if (program.isFile() && program.isExecutable())
            return program.canonicalFilePath();
    }
    return {};
}

FileClassification FileCheck::classify(const QString& path) const
{
    if (m_program.isEmpty())
        return FileClassifier::classify(path);
    QProcess child;
    child.setProcessChannelMode(QProcess::SeparateChannels);
    child.start(m_program, {QStringLiteral("check"), path}, QIODevice::ReadOnly);
    if (!child.waitForStarted())
        return FileClassifier::classify(path);
    if (!child.waitForFinished(TimeoutMilliseconds)) {
        child.kill();
        child.waitForFinished();
        return damaged(path, QStringLiteral("the file check did not finish"));
    }
    if (child.exitStatus() != QProcess::NormalExit)
        return damaged(path, QStringLiteral("the file check crashed"));

    const QStringList lines = QString::fromUtf8(child.readAllStandardOutput()).split(QLatin1Char('\n'));
    const QString kind = lines.value(0);
    FileClassification result;
    if (child.exitCode() == 0 && kind == QLatin1String("data"))
        result.kind = FileKind::Data;
    else if (child.exitCode() == 0 && kind == QLatin1String("experiment"))
        result.kind = FileKind::Experiment;
    else if (kind == QLatin1String("unrecognized"))
        result.message = lines.value(1);
    else
        return damaged(path, QString::fromUtf8(child.readAllStandardError()));
    return result;
}

} // namespace zarvi
