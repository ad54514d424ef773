#pragma once

#include "analysis/AnalysisOperationDialog.h"
#include "framework/AbstractPipeline.h"

namespace zarvi {

/// The single-file analyses, opened in AnalysisOperationDialog. GUI thread.
class AnalysisPipeline : public AbstractPipeline
{
    Q_OBJECT

public:
    explicit AnalysisPipeline(QWidget* parent = nullptr) : AbstractPipeline(OperationFamily::Analysis, parent)
    {
        buildOperationList();
    }

protected:
    OperationDialog* createDialog(AbstractOperationView* view) override
    {
        return new AnalysisOperationDialog(view, this);
    }
};

} // namespace zarvi
