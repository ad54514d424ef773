#include "framework/OperationRunner.h"

#include "datafile/HDF5Writer_V6.h"
#include "definitions/FileDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/AbstractOperationProcess.h"
#include "framework/FileAccessLock.h"
#include "framework/LockedFileRead.h"
#include "framework/OperationRegistry.h"

#include <QEventLoop>
#include <QThread>
#include <QTimer>

#include <memory>

namespace zarvi {

RunResult OperationRunner::run(const QVariantMap& parameters, const QString& filepath,
                               const QStringList& datapaths)
{
    RunResult result;
    result.filepath = filepath;
    const QString name = parameters.value(FileDefinitions::Operations).toString();
    const OperationDescriptor* descriptor = OperationRegistry::instance().find(name);
    if (!descriptor) {
        result.errors << (name.isEmpty() ? ZarviMainDefinitions::parameterMissingMessage().arg(
                                               FileDefinitions::Operations)
                                         : ZarviMainDefinitions::operationUnknownMessage().arg(name));
        return result;
    }

    std::shared_ptr<AbstractOperationProcess> process = descriptor->createProcess();
    auto thread = std::make_shared<QThread>();
    process->moveToThread(thread.get());
    thread->start();

    QEventLoop loop;
    // A signal handler may only set a flag; the timer below carries it to the process.
    // A cancel asked for from a progress callback is carried at once.
    const auto passCancelOn = [&] {
        if (m_cancelRequested) {
            result.canceled = true;
            process->onCancelProcessRequested();
        }
    };
    connect(process.get(), &AbstractOperationProcess::sendProgressToView, &loop, [&](int progress, bool) {
        if (onProgress)
            onProgress(progress);
        passCancelOn();
    });
    connect(process.get(), &AbstractOperationProcess::sendProgressLabelToView, &loop,
            [&](const QString& label) {
                if (onLabel)
                    onLabel(label);
                passCancelOn();
            });
    connect(process.get(), &AbstractOperationProcess::sendMessageToView, this,
            [this](const QString& title, const QString& message, const QString& details, int icon) {
                if (onMessage)
                    onMessage(title, message, details, icon);
            });
    connect(process.get(), &AbstractOperationProcess::sendProcessFinished, &loop,
            [&](const QString& file, const QStringList& paths, const QStringList& errors) {
                result.filepath = file;
                result.datapaths = paths;
                result.errors = errors;
                loop.quit();
            });
    QTimer cancelPoll;
    connect(&cancelPoll, &QTimer::timeout, this, passCancelOn);
    cancelPoll.start(50);

    QVariantMap request = parameters;
    request.insert(FileDefinitions::Filepath, filepath);
    request.insert(FileDefinitions::SourceDatapaths, datapaths);
    QMetaObject::invokeMethod(process.get(), "onStartProcessRequested", Qt::QueuedConnection,
                              Q_ARG(QVariantMap, request));
    loop.exec();

    thread->quit();
    thread->wait();
    return result;
}

RunResult OperationRunner::runPipeline(const QList<QVariantMap>& steps, const QString& filepath,
                                       const QStringList& datapaths)
{
    RunResult result;
    result.filepath = filepath;
    result.datapaths = datapaths;
    const QSet<QString> groupsBefore = steps.size() > 1 ? groupPaths(filepath) : QSet<QString>();
    QStringList written;
    for (qsizetype i = 0; i < steps.size(); ++i) {
        result = run(steps[i], filepath, result.datapaths);
        const bool committed = result.succeeded();
        if (committed)
            written << result.datapaths;
        if (committed && i + 1 == steps.size()) {
            // Every step is in the file: a cancel that came after the last commit stops nothing.
            result.canceled = false;
            break;
        }
        if (!committed || result.canceled) {
            // A pipeline is all or nothing: the steps that ran are taken back too, a step
            // that committed just before the cancel reached it included.
            takeBack(filepath, written, groupsBefore);
            result.datapaths.clear();
            if (result.errors.isEmpty())
                result.errors << ZarviMainDefinitions::operationCanceledMessage();
            break;
        }
    }
    return result;
}

QSet<QString> OperationRunner::groupPaths(const QString& filepath)
{
    QSet<QString> paths;
    LockedFileRead read(filepath, LockedFileRead::Wait::Yes);
    if (!read.isOpen())
        return paths;
    HDF5Manager_V6& file = read.reader();
    QStringList pending{QString()};
    while (!pending.isEmpty()) {
        const QString path = pending.takeLast();
        const hid_t group = path.isEmpty() ? file.fileId() : file.openGroup(file.fileId(), path);
        for (const QString& name : file.children(group)) {
            const QString child = path.isEmpty() ? name : path + QLatin1Char('/') + name;
            if (file.objectKind(file.fileId(), child) == ObjectKind::Group) {
                paths.insert(child);
                pending << child;
            }
        }
        if (!path.isEmpty())
            file.closeGroup(group);
    }
    return paths;
}

void OperationRunner::takeBack(const QString& filepath, const QStringList& written,
                               const QSet<QString>& groupsBefore)
{
    if (written.isEmpty())
        return;
    const auto lock = FileAccessLock::lock(filepath);
    HDF5Writer_V6 file;
    if (file.open(filepath) < 0)
        return;
    for (const QString& path : written) {
        // The highest level of the output that the pipeline created goes, with all below it.
        const QStringList levels = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
        QString prefix;
        for (const QString& level : levels) {
            prefix = prefix.isEmpty() ? level : prefix + QLatin1Char('/') + level;
            if (!groupsBefore.contains(prefix)) {
                if (file.exists(file.fileId(), prefix))
                    file.deleteLink(file.fileId(), prefix);
                break;
            }
        }
    }
}

} // namespace zarvi
