#include "app/plugins/DatasetPipeline.h"

#include "definitions/DatasetDefinitions.h"
#include "framework/DatasetSelector.h"
#include "image/ImagePipeline.h"
#include "image/voluimages/VoluImagesPipeline.h"
#include "signal/SignalPipeline.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace zarvi {

DatasetPipeline::DatasetPipeline(QWidget* parent) : AbstractPipeline(OperationFamily::Signal, parent)
{
    auto* layout = new QVBoxLayout(this);
    auto* data = new QGroupBox(tr("Data"), this);
    data->setObjectName(QStringLiteral("gb_data"));
    auto* dataLayout = new QVBoxLayout(data);
    m_selector = new DatasetSelector(data);
    dataLayout->addWidget(m_selector);
    layout->addWidget(data, 1);

    auto* pipeline = new QGroupBox(tr("Pipeline"), this);
    pipeline->setObjectName(QStringLiteral("gb_pipeline"));
    auto* pipelineLayout = new QVBoxLayout(pipeline);
    auto* operations = new QGroupBox(tr("Operations"), pipeline);
    operations->setObjectName(QStringLiteral("gb_operations"));
    auto* operationsLayout = new QVBoxLayout(operations);
    m_pipelines = new QStackedWidget(operations);
    m_pipelines->addWidget(new QWidget(m_pipelines));
    m_signalPipeline = new SignalPipeline(m_pipelines);
    m_imagePipeline = new ImagePipeline(m_pipelines);
    m_voluImagesPipeline = new VoluImagesPipeline(m_pipelines);
    for (AbstractPipeline* p :
         {static_cast<AbstractPipeline*>(m_signalPipeline), static_cast<AbstractPipeline*>(m_imagePipeline),
          static_cast<AbstractPipeline*>(m_voluImagesPipeline)}) {
        m_pipelines->addWidget(p);
        connect(p, &AbstractPipeline::sendOperationProcessFinished, this,
                [this](const QString& filepath, const QStringList& datapaths) {
                    reload(filepath);
                    if (!datapaths.isEmpty())
                        m_selector->select(datapaths);
                    emit sendOperationProcessFinished(filepath, datapaths);
                });
        connect(p, &AbstractPipeline::sendCloseAllDatasetsRequest, this,
                &AbstractPipeline::sendCloseAllDatasetsRequest);
    }
    operationsLayout->addWidget(m_pipelines);
    pipelineLayout->addWidget(operations);

    auto* parameters = new QGroupBox(tr("Preview"), pipeline);
    parameters->setObjectName(QStringLiteral("gb_parameters"));
    parameters->setToolTip(DatasetDefinitions::previewBoxTooltip());
    auto* parametersLayout = new QVBoxLayout(parameters);
    auto* parametersArea = new QWidget(parameters);
    parametersArea->setObjectName(QStringLiteral("w_parameters"));
    auto* areaLayout = new QVBoxLayout(parametersArea);
    m_previewSeries = new QComboBox(parametersArea);
    m_previewSeries->setObjectName(QStringLiteral("cb_previewSeries"));
    m_previewDataset = new QComboBox(parametersArea);
    m_previewDataset->setObjectName(QStringLiteral("cb_previewDataset"));
    areaLayout->addWidget(m_previewSeries);
    areaLayout->addWidget(m_previewDataset);
    parametersLayout->addWidget(parametersArea);
    pipelineLayout->addWidget(parameters);

    m_warning = new QLabel(pipeline);
    m_warning->setObjectName(QStringLiteral("lb_warning"));
    m_warning->setWordWrap(true);
    pipelineLayout->addWidget(m_warning);
    layout->addWidget(pipeline, 1);

    connect(m_selector, &DatasetSelector::selectionChanged, this, &DatasetPipeline::onSelectionChanged);
}

void DatasetPipeline::reload(const QString& filepath)
{
    m_filepath = filepath;
    if (!m_selector->reload(filepath))
        m_warning->setText(tr("The file is busy or cannot be read; the list was not refreshed."));
}

AbstractPipeline* DatasetPipeline::currentPipeline() const
{
    return qobject_cast<AbstractPipeline*>(m_pipelines->currentWidget());
}

void DatasetPipeline::onSelectionChanged(const QStringList& paths)
{
    m_warning->clear();
    m_previewSeries->clear();
    m_previewDataset->clear();
    for (const QString& path : paths) {
        const QStringList parts = path.split(QLatin1Char('/'));
        for (const QString& part : parts)
            if (part.contains(QStringLiteral("Series")) && m_previewSeries->findText(part) < 0)
                m_previewSeries->addItem(part);
        m_previewDataset->addItem(parts.size() > 1 ? parts[parts.size() - 2] : path, path);
    }
    AbstractPipeline* pipeline = nullptr;
    switch (m_selector->selectionKind()) {
    case SelectionKind::Signals:
        pipeline = m_signalPipeline;
        break;
    case SelectionKind::Images:
        pipeline = m_imagePipeline;
        break;
    case SelectionKind::VoluImages:
        pipeline = m_voluImagesPipeline;
        break;
    case SelectionKind::Mixed:
        m_warning->setText(tr("Select datasets of one kind: signals or image stacks."));
        break;
    case SelectionKind::None:
        break;
    }
    if (pipeline) {
        pipeline->setData(m_filepath, paths);
        m_pipelines->setCurrentWidget(pipeline);
    } else {
        m_pipelines->setCurrentIndex(0);
    }
}

} // namespace zarvi
