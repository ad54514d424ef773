#pragma once

#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QStringList>

#include <vector>

#include "datafile/Feedback.h"

namespace zarvi::test {

/// True when a command-line tool is on the PATH.
inline bool haveTool(const QString& name)
{
    return !QStandardPaths::findExecutable(name).isEmpty();
}

struct ToolRun
{
    int exitCode = -1;
    QByteArray output;
};

/// Runs a command-line tool to completion; stdout and stderr together.
inline ToolRun runTool(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    ToolRun run;
    if (!process.waitForFinished(300000))
        return run;
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.output = process.readAll();
    return run;
}

inline void writeText(const QString& path, const QByteArray& text)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
}

inline QByteArray readText(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Records the progress a computation reports and cancels once it reached cancelAt
/// (at once when cancelAt is negative).
class RecordingFeedback : public Feedback
{
public:
    explicit RecordingFeedback(int cancelAt = 101) : m_cancelAt(cancelAt) {}
    bool isCanceled() const override
    {
        return m_cancelAt < 0 || (!percents.empty() && percents.back() >= m_cancelAt);
    }
    void setProgress(int percent) override { percents.push_back(percent); }

    std::vector<int> percents;

private:
    int m_cancelAt;
};

} // namespace zarvi::test
