#pragma once

#include "analysis/AnalysisOperationDialog.h"
#include "framework/AbstractPipeline.h"

namespace zarvi {

class DatasetSelector;

/// The single-file analyses, opened in AnalysisOperationDialog, over a data selector
/// of their own: it starts from the datasets chosen for processing and follows them,
/// but an analysis can be pointed at other signals without changing that choice.
/// GUI thread.
class AnalysisPipeline : public AbstractPipeline
{
    Q_OBJECT

public:
    explicit AnalysisPipeline(QWidget* parent = nullptr);

    /// Re-reads the file's datasets, keeping the checks of those still there.
    void reload(const QString& filepath);
    /// Checks exactly these paths, as the processing page has just chosen them.
    void follow(const QStringList& paths);
    DatasetSelector* selector() const { return m_selector; }

protected:
    OperationDialog* createDialog(AbstractOperationView* view) override
    {
        return new AnalysisOperationDialog(view, this);
    }

private:
    DatasetSelector* m_selector;
    QString m_filepath;
};

} // namespace zarvi
