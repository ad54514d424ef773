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
class PipelineSummaryDialog;

/// A list of the operations that apply to one kind of data, for the datasets
/// chosen in the plug-in. A click opens the operation's dialog; when a run ends
/// the pipeline reports the new data paths so the plug-in re-reads the file. A
/// saved sequence of operations can be loaded: it is checked, its steps are shown,
/// and only when the user confirms it runs with "Pipeline Progress". GUI thread.
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
    /// Shows the summary of a pipeline and returns whether the user accepted it; the
    /// default runs the dialog modally (tests inspect it and press a button instead).
    void setSummaryPresenter(std::function<bool(PipelineSummaryDialog&)> presenter)
    {
        m_presentSummary = std::move(presenter);
    }
    /// What "Load Pipeline..." does with the chosen file: refuses a file that is not a
    /// valid pipeline (saying why), shows its steps and the chosen datasets, and runs it
    /// on them only when the user accepts; `canceled` when the user did not.
    RunResult loadPipeline(const QString& path);
    /// Runs a saved sequence of operations on the chosen datasets without asking; a file
    /// that is not a valid pipeline runs nothing and its problems are the errors.
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
    /// Reads the file and checks every step against the registry; false with the problems.
    static bool readChecked(const QString& path, QList<QVariantMap>& steps, QStringList& problems);
    RunResult runSteps(const QList<QVariantMap>& steps);

    OperationFamily m_family;
    QString m_filepath;
    QStringList m_datapaths;
    QLabel* m_selectionLabel = nullptr;
    std::shared_ptr<QProgressDialog> m_pipelineProgress;
    std::unique_ptr<OperationRunner> m_runner;
    /// The dialogs opened here that are still open: they follow setData().
    QList<QPointer<OperationDialog>> m_dialogs;
    std::function<void(const QString& title, const QString& message)> m_presentMessage;
    std::function<bool(PipelineSummaryDialog&)> m_presentSummary;
};

} // namespace zarvi
