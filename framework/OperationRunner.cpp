#include "framework/OperationRunner.h"

#include "definitions/FileDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/AbstractOperationProcess.h"
#include "framework/OperationRegistry.h"

#include <QEventLoop>
#include <QThread>
#include <QTimer>

#include <memory>

namespace zarvi {

RunResult OperationRunner::run(const QVariantMap& parameters, const QString& filepath, const QStringList& datapaths)
{
    RunResult result;
    result.filepath = filepath;
    const QString name = parameters.value(FileDefinitions::Operations).toString();
    const OperationDescriptor* descriptor = OperationRegistry::instance().find(name);
    if (!descriptor) {
        result.errors << (name.isEmpty() ? ZarviMainDefinitions::parameterMissingMessage().arg(FileDefinitions::Operations)
                                         : ZarviMainDefinitions::operationUnknownMessage().arg(name));
        return result;
    }

    std::shared_ptr<AbstractOperationProcess> process = descriptor->createProcess();
    auto thread = std::make_shared<QThread>();
    process->moveToThread(thread.get());
    thread->start();

    QEventLoop loop;
    connect(process.get(), &AbstractOperationProcess::sendProgressToView, this, [this](int progress, bool) {
        if (onProgress)
            onProgress(progress);
    });
    connect(process.get(), &AbstractOperationProcess::sendProgressLabelToView, this, [this](const QString& label) {
        if (onLabel)
            onLabel(label);
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
    // A signal handler may only set a flag; this timer carries it to the process.
    QTimer cancelPoll;
    connect(&cancelPoll, &QTimer::timeout, this, [&] {
        if (m_cancelRequested) {
            result.canceled = true;
            process->onCancelProcessRequested();
        }
    });
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
    for (const QVariantMap& step : steps) {
        result = run(step, filepath, result.datapaths);
        if (!result.succeeded() || result.canceled)
            break;
    }
    return result;
}

} // namespace zarvi
