#include "app/plugins/PipelineSaving.h"

#include "definitions/ZarviMainDefinitions.h"
#include "framework/PipelineFile.h"
#include "framework/PipelineHistory.h"
#include "framework/PipelineSummaryDialog.h"

#include <QFileDialog>

namespace zarvi {

namespace {

using ZD = ZarviMainDefinitions;

} // namespace

PipelineSaving::PipelineSaving(QWidget* dialogParent, std::function<void(const QString&)> message)
    : QObject(dialogParent), m_dialogParent(dialogParent), m_message(std::move(message)),
      m_presentSummary([](PipelineSummaryDialog& dialog) { return dialog.exec() == QDialog::Accepted; }),
      m_askFile([this] {
          return QFileDialog::getSaveFileName(m_dialogParent, ZD::savePipelineTitle(), QString(),
                                              ZD::pipelineFileFilter());
      })
{
}

QString PipelineSaving::save(const QString& filepath, const QString& resultPath)
{
    const PipelineHistory::Result history = PipelineHistory::of(filepath, resultPath);
    if (!history.error.isEmpty()) {
        m_message(history.error);
        return {};
    }
    PipelineSummaryDialog summary(history.steps, ZD::recordedFromText(), {history.origin},
                                  ZD::saveButtonText(), m_dialogParent);
    summary.setWindowTitle(ZD::savePipelineTitle());
    if (!m_presentSummary(summary))
        return {};
    QString path = m_askFile();
    if (path.isEmpty())
        return {};
    if (!path.endsWith(QStringLiteral(".json"), Qt::CaseInsensitive))
        path += QStringLiteral(".json");
    QString error;
    if (!PipelineFile::write(path, history.steps, error)) {
        m_message(error.toHtmlEscaped());
        return {};
    }
    emit sendStatusMessage(ZD::pipelineSavedMessage().arg(path));
    return path;
}

} // namespace zarvi
