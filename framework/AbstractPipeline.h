#pragma once

#include "framework/OperationRegistry.h"
#include "framework/OperationRunner.h"

#include <QPointer>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <memory>

class QProgressDialog;
class QVBoxLayout;
class QLabel;

namespace zarvi {

class AbstractOperationView;
class OperationDialog;

/// A list of the operations that apply to one kind of data, for the datasets
/// chosen in the plug-in. A click opens the operation's dialog; when a run ends
/// the pipeline reports the new data paths so the plug-in re-reads the file. A
/// saved sequence of operations can be loaded and run with "Pipeline Progress".
/// GUI thread.
class AbstractPipeline : public QWidget
{
    Q_OBJECT

public:
    AbstractPipeline(OperationFamily family, QWidget* parent = nullptr);
    ~AbstractPipeline() override;

    /// The file and the datasets the operations will work on, also those of the dialogs open.
    void setData(const QString& filepath, const QStringList& datapaths);
    QStringList operationNames() const;
    /// Opens an operation's dialog, as a click on its button does; null when it has no
    /// view, or when it cannot run on the chosen datasets (after saying why).
    OperationDialog* openOperation(const QString& name);
    /// Replaces the message box that says why an operation cannot run on the selection.
    void setMessagePresenter(std::function<void(const QString& title, const QString& message)> presenter)
    {
        m_presentMessage = std::move(presenter);
    }
    /// Runs a saved sequence of operations on the chosen datasets.
    RunResult runSavedPipeline(const QString& path);

signals:
    void sendOperationProcessFinished(const QString& filepath, const QStringList& datapaths);
    void sendCloseAllDatasetsRequest();

public slots:
    void onOperationButtonClicked();
    void onCancelPipelineReceived();
    void onProgressReceived(int progress);
    void onLoadPipelineClicked();
    void onPipelineFinished(const QString& processedFile, const QStringList& processedData,
                            const QStringList& errors);

protected:
    /// Lays out one button per operation of the family and "Load Pipeline...".
    void buildOperationList();
    /// The family's dialog around a view.
    virtual OperationDialog* createDialog(AbstractOperationView* view);

private:
    OperationFamily m_family;
    QString m_filepath;
    QStringList m_datapaths;
    QLabel* m_selectionLabel = nullptr;
    std::shared_ptr<QProgressDialog> m_pipelineProgress;
    std::unique_ptr<OperationRunner> m_runner;
    /// The dialogs opened here that are still open: they follow setData().
    QList<QPointer<OperationDialog>> m_dialogs;
    std::function<void(const QString& title, const QString& message)> m_presentMessage;
};

} // namespace zarvi
