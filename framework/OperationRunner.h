#pragma once

#include <QObject>
#include <QSet>
#include <QStringList>
#include <QVariantMap>

#include <atomic>
#include <functional>

namespace zarvi {

/// What one run produced.
struct RunResult
{
    QString filepath;
    QStringList datapaths;
    QStringList errors;
    /// A cancel was asked for. With no errors the run had committed before the cancel
    /// reached it, and its outputs stand.
    bool canceled = false;
    bool succeeded() const { return errors.isEmpty(); }
};

/// Runs operations without a view, the way a view does: the process on a worker
/// thread of its own, every signal queued back to the caller's thread. Used by
/// the command-line runner, saved pipelines and tests. Lives on the thread that
/// calls run(), which needs a Qt application object.
class OperationRunner : public QObject
{
    Q_OBJECT

public:
    std::function<void(int)> onProgress;
    std::function<void(const QString&)> onLabel;
    std::function<void(const QString& title, const QString& message, const QString& details, int icon)>
        onMessage;

    /// Runs one operation on `datapaths` of `filepath` and waits for it,
    /// keeping the caller's event loop turning.
    RunResult run(const QVariantMap& parameters, const QString& filepath, const QStringList& datapaths);
    /// Runs a sequence: each step takes the previous step's outputs as its inputs. All or
    /// nothing: when a step fails or is cancelled, what the earlier steps wrote is deleted
    /// too, with the parent groups the pipeline added.
    RunResult runPipeline(const QList<QVariantMap>& steps, const QString& filepath,
                          const QStringList& datapaths);

    /// Asks the running process to stop. Safe from any thread and from a signal handler.
    void requestCancel() { m_cancelRequested = true; }

private:
    /// Every group of the file, to tell afterwards which groups a pipeline added.
    static QSet<QString> groupPaths(const QString& filepath);
    static void takeBack(const QString& filepath, const QStringList& written,
                         const QSet<QString>& groupsBefore);

    std::atomic<bool> m_cancelRequested{false};
};

} // namespace zarvi
