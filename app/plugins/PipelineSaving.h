#pragma once

#include <QObject>
#include <QString>

#include <functional>

class QWidget;

namespace zarvi {

class PipelineSummaryDialog;

/// "Save Pipeline..." of the file browser: reads back the steps that produced a result
/// (PipelineHistory), shows them with the data they started from, asks for a ".json"
/// file name and writes the pipeline there, for "Load Pipeline..." and `zarvi-cli run
/// --pipeline`. Refusals and failures go to the message handler, the outcome to the
/// status bar. GUI thread.
class PipelineSaving : public QObject
{
    Q_OBJECT

public:
    /// `dialogParent` parents the dialogs; `message` shows a refusal (rich text).
    PipelineSaving(QWidget* dialogParent, std::function<void(const QString&)> message);

    /// The file the pipeline of the result at `resultPath` was saved to; empty when
    /// nothing was saved (no history, cancelled, failed).
    QString save(const QString& filepath, const QString& resultPath);

    /// Replace the modal summary and the file dialog (tests).
    void setSummaryPresenter(std::function<bool(PipelineSummaryDialog&)> presenter)
    {
        m_presentSummary = std::move(presenter);
    }
    void setFileAsker(std::function<QString()> asker) { m_askFile = std::move(asker); }

signals:
    void sendStatusMessage(const QString& message);

private:
    QWidget* m_dialogParent;
    std::function<void(const QString&)> m_message;
    std::function<bool(PipelineSummaryDialog&)> m_presentSummary;
    std::function<QString()> m_askFile;
};

} // namespace zarvi
