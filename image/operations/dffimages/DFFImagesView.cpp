#include "image/operations/dffimages/DFFImagesView.h"

#include "datafile/DataFileTree.h"
#include "datafile/ImageFrameReader.h"
#include "definitions/FileDefinitions.h"
#include "definitions/ImageOperationDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/BackgroundJob.h"
#include "framework/LockedFileRead.h"
#include "image/operations/dffimages/DarkFrame.h"
#include "image/operations/dffimages/FrameDeltaF.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

namespace zarvi {

using ID = ImageOperationDefinitions;

namespace {

constexpr int pathRole = Qt::UserRole;
constexpr int sizeRole = Qt::UserRole + 1;

} // namespace

/// Written by the preview job, read on the GUI thread once it has finished.
struct DFFImagesView::PreviewResult
{
    std::shared_ptr<const FrameDeltaF> deltaF;
    QString error;
    int generation = 0;
};

DFFImagesView::DFFImagesView(QWidget* parent)
    : ImageOperationView(ID::ImagesDeltaF, parent),
      m_previewJob(std::make_unique<BackgroundJob>(ZarviMainDefinitions::previewProgressTitle()))
{
    QFormLayout* form = addParameterGroup(ID::dffParametersTitle(), QStringLiteral("gb_dffParameters"));
    const QVariantMap& remembered = rememberedParameters();

    cb_removeTemporalVariations = new QCheckBox(ID::removeTemporalVariationsLabel(), this);
    cb_removeTemporalVariations->setObjectName(QStringLiteral("cb_removeTemporalVariations"));
    cb_removeTemporalVariations->setToolTip(ID::removeTemporalVariationsTooltip());
    cb_removeTemporalVariations->setChecked(remembered.value(ID::RemoveTemporalVariations).toInt() != 0);
    form->addRow(cb_removeTemporalVariations);

    lb_darkframeFile = new QLabel(ID::noDarkframeSelected(), this);
    lb_darkframeFile->setObjectName(QStringLiteral("lb_darkframeFile"));
    lb_darkframeFile->setToolTip(ID::darkframeFilepathTooltip());
    tb_darkframeFile = new QToolButton(this);
    tb_darkframeFile->setObjectName(QStringLiteral("tb_darkframeFile"));
    tb_darkframeFile->setText(QStringLiteral("..."));
    tb_darkframeFile->setToolTip(ID::chooseDarkframeTooltip());
    tb_clearDarkframe = new QToolButton(this);
    tb_clearDarkframe->setObjectName(QStringLiteral("tb_clearDarkframe"));
    tb_clearDarkframe->setText(QStringLiteral("x"));
    tb_clearDarkframe->setToolTip(ID::clearDarkframeTooltip());
    auto* fileRow = new QHBoxLayout;
    fileRow->addWidget(lb_darkframeFile, 1);
    fileRow->addWidget(tb_darkframeFile);
    fileRow->addWidget(tb_clearDarkframe);
    form->addRow(ID::darkframeFilepathLabel(), fileRow);

    cb_darkframeDataset = new QComboBox(this);
    cb_darkframeDataset->setObjectName(QStringLiteral("cb_darkframeDataset"));
    cb_darkframeDataset->setToolTip(ID::darkframeDatasetTooltip());
    cb_darkframeDataset->setEnabled(false);
    form->addRow(ID::darkframeDatasetLabel(), cb_darkframeDataset);
    lb_darkframeValidation = makeValidationLabel(QStringLiteral("lb_darkframeValidation"));
    form->addRow(lb_darkframeValidation);
    lb_darkframeWarning = new QLabel(ID::darkframeWarning(), this);
    lb_darkframeWarning->setObjectName(QStringLiteral("lb_darkframeWarning"));
    lb_darkframeWarning->setWordWrap(true);
    form->addRow(lb_darkframeWarning);

    pb_preview = new QPushButton(ID::previewLabel(), this);
    pb_preview->setObjectName(QStringLiteral("pb_preview"));
    pb_preview->setToolTip(ID::dffPreviewTooltip());
    lb_previewStatus = new QLabel(ID::dffPreviewHint(), this);
    lb_previewStatus->setObjectName(QStringLiteral("lb_previewStatus"));
    lb_previewStatus->setWordWrap(true);
    form->addRow(pb_preview);
    form->addRow(lb_previewStatus);

    const QString rememberedFile = remembered.value(ID::DarkframeFilepath).toString();
    if (!rememberedFile.isEmpty() && QFileInfo::exists(rememberedFile)) {
        setDarkframeFile(rememberedFile);
        const int index = cb_darkframeDataset->findData(remembered.value(ID::DarkframeDataset), pathRole);
        if (index >= 0)
            cb_darkframeDataset->setCurrentIndex(index);
    }

    connect(cb_removeTemporalVariations, &QCheckBox::toggled, this, &DFFImagesView::parametersChanged);
    connect(cb_darkframeDataset, &QComboBox::currentIndexChanged, this, &DFFImagesView::parametersChanged);
    connect(tb_darkframeFile, &QToolButton::clicked, this, &DFFImagesView::onChooseDarkframeClicked);
    connect(tb_clearDarkframe, &QToolButton::clicked, this, [this] { setDarkframeFile({}); });
    connect(pb_preview, &QPushButton::clicked, this, &DFFImagesView::startPreview);
    connect(m_previewJob.get(), &BackgroundJob::finished, this, &DFFImagesView::onPreviewFinished);
}

DFFImagesView::~DFFImagesView() = default;

void DFFImagesView::onChooseDarkframeClicked()
{
    const QString path =
        QFileDialog::getOpenFileName(this, ID::darkframeFilepathLabel(), QFileInfo(filepath()).absolutePath(),
                                     FileDefinitions::FileFilter);
    if (!path.isEmpty())
        setDarkframeFile(path);
}

void DFFImagesView::setDarkframeFile(const QString& filepath)
{
    std::vector<DataFileNode> nodes;
    QString problem;
    if (!filepath.isEmpty()) {
        LockedFileRead read(filepath);
        if (read.isOpen())
            nodes = DataFileTree::collect(read.reader());
        else
            problem = read.error();
    }
    m_darkframeFile = filepath;
    lb_darkframeFile->setText(filepath.isEmpty() ? ID::noDarkframeSelected()
                                                 : QFileInfo(filepath).fileName());
    lb_darkframeFile->setToolTip(filepath.isEmpty() ? ID::darkframeFilepathTooltip() : filepath);
    {
        const QSignalBlocker block(cb_darkframeDataset);
        cb_darkframeDataset->clear();
        for (const DataFileNode& node : nodes) {
            if (node.kind != ObjectKind::Dataset || node.name != FileDefinitions::ImageStack ||
                node.dimensions.size() != 3)
                continue;
            const QString group = node.path.left(node.path.lastIndexOf(QLatin1Char('/')));
            cb_darkframeDataset->addItem(group, node.path);
            const QSize size(static_cast<int>(node.dimensions[1]), static_cast<int>(node.dimensions[0]));
            cb_darkframeDataset->setItemData(cb_darkframeDataset->count() - 1, size, sizeRole);
            cb_darkframeDataset->setItemData(cb_darkframeDataset->count() - 1, node.path, Qt::ToolTipRole);
        }
    }
    cb_darkframeDataset->setEnabled(!filepath.isEmpty());
    parametersChanged();
    // The file's own problem (busy, unreadable) says more than a missing dataset.
    if (!problem.isEmpty())
        setValidationText(lb_darkframeValidation, problem);
}

bool DFFImagesView::validateDarkframe()
{
    QString problem;
    if (!m_darkframeFile.isEmpty() && cb_darkframeDataset->currentIndex() < 0) {
        problem = ZarviMainDefinitions::parameterMissingMessage().arg(ID::DarkframeDataset);
    } else if (!m_darkframeFile.isEmpty() && stackInfo().width > 0) {
        const QSize size = cb_darkframeDataset->currentData(sizeRole).toSize();
        if (size != QSize(stackInfo().width, stackInfo().height))
            problem = ID::darkframeSizeMessage()
                          .arg(cb_darkframeDataset->currentData(pathRole).toString())
                          .arg(size.width())
                          .arg(size.height())
                          .arg(datapaths().value(0))
                          .arg(stackInfo().width)
                          .arg(stackInfo().height);
    }
    setValidationText(lb_darkframeValidation, problem);
    return problem.isEmpty();
}

void DFFImagesView::parametersChanged()
{
    ++m_generation;
    m_deltaF.reset();
    validateDarkframe();
    lb_previewStatus->setText(ID::dffPreviewHint());
    updatePreview();
}

void DFFImagesView::datasetsChanged()
{
    ++m_generation;
    m_deltaF.reset();
    ImageOperationView::datasetsChanged();
    validateDarkframe();
    lb_previewStatus->setText(ID::dffPreviewHint());
}

bool DFFImagesView::buildParameters(QVariantMap& parameters)
{
    if (!validateDarkframe())
        return false;
    parameters.insert(ID::RemoveTemporalVariations, cb_removeTemporalVariations->isChecked() ? 1 : 0);
    parameters.insert(ID::F0Method, ID::Mean);
    if (!m_darkframeFile.isEmpty()) {
        parameters.insert(ID::DarkframeFilepath, m_darkframeFile);
        parameters.insert(ID::DarkframeDataset, cb_darkframeDataset->currentData(pathRole).toString());
    }
    return true;
}

ImageFramePreview::Computation DFFImagesView::previewComputation() const
{
    if (!m_deltaF)
        return {};
    return [deltaF = m_deltaF](const cv::Mat& input, cv::Mat& output) {
        deltaF->compute(input, output);
        return true;
    };
}

void DFFImagesView::startPreview()
{
    if (m_previewJob->isRunning() || datapaths().isEmpty() || !validateDarkframe())
        return;
    auto result = std::make_shared<PreviewResult>();
    result->generation = m_generation;
    m_result = result;
    const QString stackFile = filepath(), stackPath = datapaths().first();
    const QString darkFile = m_darkframeFile;
    const QString darkPath = cb_darkframeDataset->currentData(pathRole).toString();
    const bool removeVariations = cb_removeTemporalVariations->isChecked();
    m_previewJob->start(ID::meanImageProgress(), [=](Feedback& feedback) {
        cv::Mat dark;
        if (!darkFile.isEmpty() && !readDarkFrame(darkFile, darkPath, dark, result->error))
            return;
        // The dark frame's lock is released before the stack's is taken.
        LockedFileRead read(stackFile, LockedFileRead::Wait::Yes);
        ImageFrameReader reader;
        if (!read.isOpen()) {
            result->error = read.error();
            return;
        }
        if (!reader.open(read.reader(), stackPath, result->error))
            return;
        if (!dark.empty() && (dark.cols != reader.info().width || dark.rows != reader.info().height)) {
            result->error = ID::darkframeSizeMessage()
                                .arg(darkPath)
                                .arg(dark.cols)
                                .arg(dark.rows)
                                .arg(stackPath)
                                .arg(reader.info().width)
                                .arg(reader.info().height);
            return;
        }
        auto deltaF = std::make_shared<FrameDeltaF>(dark, removeVariations);
        if (reader.info().frames > 0 && addStackToBaseline(reader, *deltaF, &feedback, result->error))
            result->deltaF = std::move(deltaF);
    });
}

void DFFImagesView::onPreviewFinished(bool canceled)
{
    const std::shared_ptr<PreviewResult> result = std::move(m_result);
    if (!result || canceled || result->generation != m_generation) {
        lb_previewStatus->setText(ID::dffPreviewHint());
        return;
    }
    lb_previewStatus->setText(result->error);
    m_deltaF = result->deltaF;
    updatePreview();
}

} // namespace zarvi
