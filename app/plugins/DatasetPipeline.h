#pragma once

#include "framework/AbstractPipeline.h"

class QComboBox;
class QLabel;
class QStackedWidget;

namespace zarvi {

class DatasetSelector;
class SignalPipeline;
class ImagePipeline;
class VoluImagesPipeline;

/// The processing page of a data file: the dataset selector, and the pipeline
/// that the kind of the chosen datasets calls for (signals, image stacks,
/// volumetric series). Re-reads the file after every run and selects the new
/// outputs. GUI thread.
class DatasetPipeline : public AbstractPipeline
{
    Q_OBJECT

public:
    explicit DatasetPipeline(QWidget* parent = nullptr);

    /// Reads (or re-reads) the file's datasets.
    void reload(const QString& filepath);
    DatasetSelector* selector() const { return m_selector; }
    /// The pipeline now offered, null when the selection calls for none.
    AbstractPipeline* currentPipeline() const;

private:
    void onSelectionChanged(const QStringList& paths);

    QString m_filepath;
    DatasetSelector* m_selector;
    QStackedWidget* m_pipelines;
    SignalPipeline* m_signalPipeline;
    ImagePipeline* m_imagePipeline;
    VoluImagesPipeline* m_voluImagesPipeline;
    QComboBox* m_previewSeries;
    QComboBox* m_previewDataset;
    QLabel* m_warning;
};

} // namespace zarvi
