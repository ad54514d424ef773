#pragma once

#include <QStringList>
#include <QVariantMap>
#include <QWidget>

#include <functional>
#include <memory>

class QFormLayout;
class QLabel;
class QProgressDialog;
class QThread;

namespace zarvi {

class AbstractOperationProcess;
struct OperationDescriptor;
struct OperationParameter;

/// The parameter half of an operation, on the GUI thread inside its dialog. It
/// owns its process, the worker thread the process lives on and the progress
/// dialog (all through shared pointers), turns its widgets into a parameter map,
/// and talks to the process only through signals. Destroying the view while a
/// run is under way interrupts the worker and waits for it. The parameters of a run
/// are remembered for the next time the operation's view is made.
class AbstractOperationView : public QWidget
{
    Q_OBJECT

public:
    /// Shows a message box; tests replace it to collect the texts instead.
    using MessagePresenter =
        std::function<void(const QString& title, const QString& message, const QString& details, int icon)>;

    AbstractOperationView(const QString& operationName, QWidget* parent = nullptr);
    ~AbstractOperationView() override;

    QString operationName() const { return m_operationName; }
    /// Creates the process on a new worker thread; the view works on `datapaths` of `filepath`.
    void setupProcess(const QString& filepath, const QStringList& datapaths);
    QString filepath() const { return m_filepath; }
    QStringList datapaths() const { return m_datapaths; }
    bool isRunning() const { return m_running; }
    QProgressDialog* progressDialog() const { return m_progressDialog.get(); }
    void setMessagePresenter(MessagePresenter presenter) { m_presentMessage = std::move(presenter); }

    /// Validates the widgets, builds the parameter map and starts the run.
    /// False when validation refused (the reason is shown beside the fields).
    bool run();
    /// The size the view's dialog opens at, at least, where its texts and plots are
    /// readable; an empty size leaves it to the dialog's layout.
    virtual QSize openingSize() const { return {}; }
    /// Why the operation cannot run on the datasets set by setupProcess(); empty when it
    /// can. The pipeline asks before it opens the dialog.
    virtual QString selectionProblem() const { return {}; }

signals:
    void sendStartProcess(const QVariantMap& parameters);
    void sendCancelProcess();
    void sendProgress(int progress, bool setApplicationModal);
    void sendProcessFinished(const QString& filepath, const QStringList& datapaths,
                             const QStringList& errors);
    void sendAskToCloseAllDatasets();

public slots:
    void onProgressReceived(int progress, bool setApplicationModal);
    void onMessageReceived(const QString& title, const QString& message, const QString& details, int icon);
    void onProcessFinished(const QString& filepath, const QStringList& datapaths, const QStringList& errors);

protected:
    /// Fills the operation's own keys ("Operations" is added by the view); false
    /// when a field is invalid, after showing why beside it.
    virtual bool buildParameters(QVariantMap& parameters) = 0;
    /// Called by setupProcess() once the file and the datasets are known, so that a
    /// view can fill its choices or its preview from them. Does nothing here.
    virtual void datasetsChanged() {}
    /// The declaration of one of the operation's parameters (the view's operation must declare it).
    const OperationParameter& declaration(const QString& key) const;
    /// Adds a row for a declared parameter to `form`: its label, and its field made
    /// from the declaration (see ParameterField) and filled with the value the operation
    /// last ran with, else the declared default, with `note` (a validation text) on a row
    /// of its own under it. A check box carries its label itself, across the row.
    QWidget* addParameterRow(QFormLayout* form, const QString& key, const QString& objectName,
                             QWidget* note = nullptr);
    /// The parameters the operation last ran with from a dialog (empty the first time),
    /// for views whose fields are not made by addParameterRow().
    const QVariantMap& rememberedParameters() const { return m_remembered; }
    /// A hidden red label for a validation text beside a field.
    QLabel* makeValidationLabel(const QString& objectName);
    /// Shows `text` in `label`, or hides the label when `text` is empty.
    static void setValidationText(QLabel* label, const QString& text);
    /// Shows a message the way the process's messages are shown (a message box, or
    /// what a test put in its place).
    void showMessage(const QString& title, const QString& message, const QString& details, int icon);

private:
    void createProcess(const OperationDescriptor& descriptor);
    void onProgressLabelReceived(const QString& label);

    QString m_operationName;
    QString m_filepath;
    QStringList m_datapaths;
    QVariantMap m_remembered;
    std::shared_ptr<AbstractOperationProcess> m_process;
    std::shared_ptr<QThread> m_thread;
    std::shared_ptr<QProgressDialog> m_progressDialog;
    MessagePresenter m_presentMessage;
    bool m_running = false;
    bool m_cancelRequested = false;
};

} // namespace zarvi
