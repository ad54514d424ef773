#include "app/FileCheck.h"

#include "definitions/DatasetDefinitions.h"

#include <QCoreApplication>
#include <QCursor>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QTimer>

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

FileCheck::FileCheck(QString program, int timeoutMilliseconds)
    : m_program(std::move(program)), m_timeoutMilliseconds(timeoutMilliseconds)
{
}

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
    // Waiting in a local event loop rather than blocking keeps the windows painted while a
    // damaged file makes the check hang; user input waits, so nothing else starts meanwhile.
    const bool withCursor = qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
    if (withCursor)
        QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
    QEventLoop loop;
    QTimer limit;
    limit.setSingleShot(true);
    QObject::connect(&child, &QProcess::finished, &loop, &QEventLoop::quit);
    QObject::connect(&limit, &QTimer::timeout, &loop, &QEventLoop::quit);
    limit.start(m_timeoutMilliseconds);
    if (child.state() != QProcess::NotRunning)
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (withCursor)
        QGuiApplication::restoreOverrideCursor();
    if (child.state() != QProcess::NotRunning) {
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
