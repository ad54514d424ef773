#include "analysis/AnalysisPipeline.h"

#include "framework/DatasetSelector.h"

#include <QGroupBox>
#include <QVBoxLayout>

namespace zarvi {

AnalysisPipeline::AnalysisPipeline(QWidget* parent) : AbstractPipeline(OperationFamily::Analysis, parent)
{
    buildOperationList();
    auto* data = new QGroupBox(tr("Data"), this);
    data->setObjectName(QStringLiteral("gb_analysisData"));
    auto* dataLayout = new QVBoxLayout(data);
    m_selector = new DatasetSelector(data);
    m_selector->setObjectName(QStringLiteral("w_analysisSelector"));
    dataLayout->addWidget(m_selector);
    // Above the operations, as on the processing page: first what, then how.
    static_cast<QVBoxLayout*>(layout())->insertWidget(0, data, 1);
    connect(m_selector, &DatasetSelector::selectionChanged, this,
            [this](const QStringList& paths) { setData(m_filepath, paths); });
}

void AnalysisPipeline::reload(const QString& filepath)
{
    m_filepath = filepath;
    m_selector->reload(filepath);
    setData(filepath, m_selector->selectedPaths());
}

void AnalysisPipeline::follow(const QStringList& paths)
{
    m_selector->select(paths);
}

} // namespace zarvi
