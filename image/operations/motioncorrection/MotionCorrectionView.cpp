#include "image/operations/motioncorrection/MotionCorrectionView.h"

#include "datafile/DataFileTree.h"
#include "datafile/ImageFrameReader.h"
#include "definitions/FileDefinitions.h"
#include "definitions/ImageOperationDefinitions.h"
#include "framework/BackgroundJob.h"
#include "framework/LockedFileRead.h"
#include "image/operations/motioncorrection/AlignmentShifts.h"
#include "image/operations/motioncorrection/FrameRegistration.h"
#include "image/operations/motioncorrection/MotionShiftPlot.h"
#include "roi/ZarviGraphicsView.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QToolButton>

namespace zarvi {

using FD = FileDefinitions;
using ID = ImageOperationDefinitions;

/// What the reference job hands back to the GUI thread once it has finished.
struct MotionCorrectionView::LoadedReference
{
    std::shared_ptr<const MotionReference> reference;
    std::vector<std::uint16_t> pixels;
    int width = 0;
    int height = 0;
    QString error;
};

/// What the shift preview hands back to the GUI thread once it has finished.
struct MotionCorrectionView::PreviewedShifts
{
    std::vector<double> time;
    std::vector<FrameShift> shifts;
    QString error;
};

namespace {

/// Frames shown by the shift preview when it opens: the first hundred.
constexpr int previewedFrames = 100;

/// Frame `index` of the stack `datapath` of `filepath`, as stored (CV_16UC1), read under
/// the file's lock; waits for a run that holds it, so only for a job's thread.
bool readStoredFrame(const QString& filepath, const QString& datapath, std::size_t index, cv::Mat& frame,
                     QString& error)
{
    LockedFileRead read(filepath, LockedFileRead::Wait::Briefly);
    ImageFrameReader reader;
    QString problem;
    if (read.isOpen() && reader.open(read.reader(), datapath, problem) &&
        reader.readRawFrame(index, frame, problem))
        return true;
    error = ID::referenceLoadMessage().arg(filepath, datapath);
    return false;
}

} // namespace

MotionCorrectionView::MotionCorrectionView(QWidget* parent)
    : ImageOperationView(ID::MotionCorrection, parent),
      m_referenceJob(std::make_unique<BackgroundJob>(tr("Preview Progress"))),
      m_shiftJob(std::make_unique<BackgroundJob>(tr("Preview Progress")))
{
    m_referenceJob->setDialogShown(false);
    m_form = addParameterGroup(ID::motionCorrectionParametersTitle(),
                               QStringLiteral("gb_motionCorrectionParameters"));
    cb_referenceSource = static_cast<QComboBox*>(
        addParameterRow(m_form, ID::ReferenceSource, QStringLiteral("cb_referenceSource")));

    w_referenceFile = new QWidget(this);
    w_referenceFile->setObjectName(QStringLiteral("w_referenceFile"));
    auto* fileRow = new QHBoxLayout(w_referenceFile);
    fileRow->setContentsMargins(0, 0, 0, 0);
    le_referenceFile = new QLineEdit(rememberedParameters().value(ID::ReferenceFilepath).toString(), this);
    le_referenceFile->setObjectName(QStringLiteral("le_referenceFile"));
    le_referenceFile->setToolTip(ID::referenceFileTooltip());
    tb_browseReferenceFile = new QToolButton(this);
    tb_browseReferenceFile->setObjectName(QStringLiteral("tb_browseReferenceFile"));
    tb_browseReferenceFile->setText(QStringLiteral("..."));
    tb_browseReferenceFile->setToolTip(ID::referenceFileTooltip());
    fileRow->addWidget(le_referenceFile, 1);
    fileRow->addWidget(tb_browseReferenceFile);
    m_form->addRow(ID::referenceFileLabel(), w_referenceFile);

    cb_referenceDataset = new QComboBox(this);
    cb_referenceDataset->setObjectName(QStringLiteral("cb_referenceDataset"));
    m_form->addRow(ID::referenceDatasetLabel(), cb_referenceDataset);
    sb_referenceFrame = static_cast<QSpinBox*>(
        addParameterRow(m_form, ID::ReferenceFrame, QStringLiteral("sb_referenceFrame")));
    pb_loadReferenceFrame = new QPushButton(ID::loadReferenceFrameLabel(), this);
    pb_loadReferenceFrame->setObjectName(QStringLiteral("pb_loadReferenceFrame"));
    m_form->addRow(pb_loadReferenceFrame);
    cb_applyShiftsToSensor2 = new QCheckBox(ID::applyShiftsToSensor2Label(), this);
    cb_applyShiftsToSensor2->setObjectName(QStringLiteral("cb_applyShiftsToSensor2"));
    cb_applyShiftsToSensor2->setChecked(rememberedParameters().value(ID::ApplyShiftsToSensor2).toInt() == 1);
    m_form->addRow(cb_applyShiftsToSensor2);
    lb_validation = makeValidationLabel(QStringLiteral("lb_validation"));
    m_form->addRow(lb_validation);

    QFormLayout* referenceForm =
        addParameterGroup(ID::referenceFrameLabel(), QStringLiteral("gb_referenceFrame"));
    gv_reference = new ZarviGraphicsView(this);
    gv_reference->setObjectName(QStringLiteral("gv_reference"));
    gv_reference->setMinimumHeight(160);
    lb_reference = new QLabel(this);
    lb_reference->setObjectName(QStringLiteral("lb_reference"));
    lb_reference->setWordWrap(true);
    referenceForm->addRow(gv_reference);
    referenceForm->addRow(lb_reference);

    QFormLayout* shiftForm =
        addParameterGroup(ID::alignmentShiftsTitle(), QStringLiteral("gb_alignmentShifts"));
    sb_firstFrame = new QSpinBox(this);
    sb_firstFrame->setObjectName(QStringLiteral("sb_firstFrame"));
    sb_lastFrame = new QSpinBox(this);
    sb_lastFrame->setObjectName(QStringLiteral("sb_lastFrame"));
    shiftForm->addRow(ID::firstFrameLabel(), sb_firstFrame);
    shiftForm->addRow(ID::lastFrameLabel(), sb_lastFrame);
    pb_previewShifts = new QPushButton(ID::previewShiftsLabel(), this);
    pb_previewShifts->setObjectName(QStringLiteral("pb_previewShifts"));
    shiftForm->addRow(pb_previewShifts);
    m_shiftPlot = new MotionShiftPlot(this);
    m_shiftPlot->setObjectName(QStringLiteral("w_shiftPlot"));
    shiftForm->addRow(m_shiftPlot);
    lb_shifts = new QLabel(this);
    lb_shifts->setObjectName(QStringLiteral("lb_shifts"));
    lb_shifts->setWordWrap(true);
    shiftForm->addRow(lb_shifts);

    connect(cb_referenceSource, &QComboBox::currentTextChanged, this, [this] {
        m_form->setRowVisible(w_referenceFile, isExternal());
        fillReferenceDatasets();
    });
    connect(le_referenceFile, &QLineEdit::editingFinished, this,
            &MotionCorrectionView::fillReferenceDatasets);
    connect(tb_browseReferenceFile, &QToolButton::clicked, this, [this] {
        const QString path = QFileDialog::getOpenFileName(this, ID::browseReferenceFileTitle(),
                                                          le_referenceFile->text(), ID::dataFileFilter());
        if (path.isEmpty())
            return;
        le_referenceFile->setText(path);
        fillReferenceDatasets();
    });
    connect(cb_referenceDataset, &QComboBox::currentIndexChanged, this,
            &MotionCorrectionView::updateReferenceFrameRange);
    connect(sb_referenceFrame, &QSpinBox::valueChanged, this, &MotionCorrectionView::onReferenceChanged);
    connect(pb_loadReferenceFrame, &QPushButton::clicked, this, &MotionCorrectionView::loadReferenceFrame);
    connect(pb_previewShifts, &QPushButton::clicked, this, &MotionCorrectionView::previewShifts);
    connect(m_referenceJob.get(), &BackgroundJob::finished, this, &MotionCorrectionView::onReferenceLoaded);
    connect(m_shiftJob.get(), &BackgroundJob::finished, this, &MotionCorrectionView::onShiftsPreviewed);
    connect(this, &AbstractOperationView::sendProcessFinished, this, &MotionCorrectionView::showRunShifts);
    m_form->setRowVisible(w_referenceFile, isExternal());
}

MotionCorrectionView::~MotionCorrectionView() = default;

bool MotionCorrectionView::isExternal() const
{
    return cb_referenceSource->currentText() == ID::ExternalFile;
}

MotionCorrectionView::ReferenceChoice MotionCorrectionView::referenceChoice() const
{
    return {isExternal() ? le_referenceFile->text() : filepath(), cb_referenceDataset->currentText(),
            static_cast<std::size_t>(sb_referenceFrame->value())};
}

bool MotionCorrectionView::isComputing() const
{
    return m_referenceJob->isRunning() || m_shiftJob->isRunning();
}

void MotionCorrectionView::datasetsChanged()
{
    ImageOperationView::datasetsChanged();
    const int frames = static_cast<int>(stackInfo().frames);
    sb_firstFrame->setRange(0, std::max(0, frames - 1));
    sb_lastFrame->setRange(0, std::max(0, frames - 1));
    sb_lastFrame->setValue(std::min(frames, previewedFrames) - 1);
    fillReferenceDatasets();
    validate();
    if (!isExternal() && cb_referenceDataset->count() > 0)
        loadReferenceFrame();
}

void MotionCorrectionView::fillReferenceDatasets()
{
    // The dataset the fields named before, else the last run's, else the stack corrected.
    QString wanted = cb_referenceDataset->currentText();
    if (wanted.isEmpty())
        wanted = rememberedParameters().value(ID::ReferenceDatapath).toString();
    if (wanted.isEmpty())
        wanted = datapaths().value(0);
    {
        const QSignalBlocker block(cb_referenceDataset);
        cb_referenceDataset->clear();
        const QString file = isExternal() ? le_referenceFile->text() : filepath();
        LockedFileRead read(file);
        if (!file.isEmpty() && read.isOpen()) {
            for (const DataFileNode& node : DataFileTree::collect(read.reader())) {
                if (node.kind == ObjectKind::Dataset && node.name == FD::ImageStack &&
                    node.dimensions.size() == 3)
                    cb_referenceDataset->addItem(node.path, static_cast<qulonglong>(node.dimensions[2]));
            }
        }
        cb_referenceDataset->setCurrentIndex(std::max(0, cb_referenceDataset->findText(wanted)));
    }
    updateReferenceFrameRange();
    validate();
}

void MotionCorrectionView::updateReferenceFrameRange()
{
    const auto frames = cb_referenceDataset->currentData().toULongLong();
    sb_referenceFrame->setMaximum(static_cast<int>(std::max<qulonglong>(frames, 1) - 1));
    onReferenceChanged();
}

void MotionCorrectionView::onReferenceChanged()
{
    m_reference.reset();
    gv_reference->setFrame({}, 0, 0, stackInfo().bitCount);
    lb_reference->clear();
    updatePreview();
}

bool MotionCorrectionView::validate()
{
    QString problem;
    if (stackInfo().width != stackInfo().height)
        problem = ID::notSquareMessage();
    else if (isExternal() && le_referenceFile->text().isEmpty())
        problem = ID::noExternalFileMessage();
    setValidationText(lb_validation, problem);
    return problem.isEmpty();
}

bool MotionCorrectionView::buildParameters(QVariantMap& parameters)
{
    if (!validate())
        return false;
    parameters.insert(ID::ReferenceSource, cb_referenceSource->currentText());
    if (isExternal())
        parameters.insert(ID::ReferenceFilepath, le_referenceFile->text());
    if (!cb_referenceDataset->currentText().isEmpty())
        parameters.insert(ID::ReferenceDatapath, cb_referenceDataset->currentText());
    parameters.insert(ID::ReferenceFrame, sb_referenceFrame->value());
    parameters.insert(ID::ApplyShiftsToSensor2, cb_applyShiftsToSensor2->isChecked() ? 1 : 0);
    return true;
}

ImageFramePreview::Computation MotionCorrectionView::previewComputation() const
{
    const std::shared_ptr<const MotionReference> reference = m_reference;
    if (!reference)
        return {};
    return [reference](const cv::Mat& input, cv::Mat& output) {
        if (input.size() != reference->size())
            return false;
        FrameRegistration(reference).correct(input, output);
        return true;
    };
}

void MotionCorrectionView::loadReferenceFrame()
{
    // One load at a time: a choice made meanwhile is loaded when the running one ends.
    if (m_referenceJob->isRunning()) {
        m_referencePending = true;
        return;
    }
    m_referencePending = false;
    const ReferenceChoice choice = referenceChoice();
    const ImageStackInfo stack = stackInfo();
    auto loaded = std::make_shared<LoadedReference>();
    m_loaded = loaded;
    m_referenceJob->start(QString(), [choice, stack, loaded](Feedback&) {
        cv::Mat frame;
        if (!readStoredFrame(choice.filepath, choice.datapath, choice.frame, frame, loaded->error))
            return;
        loaded->width = frame.cols;
        loaded->height = frame.rows;
        loaded->pixels.assign(frame.begin<std::uint16_t>(), frame.end<std::uint16_t>());
        if (frame.cols != stack.width || frame.rows != stack.height) {
            loaded->error =
                ID::referenceSizeMessage().arg(frame.cols).arg(frame.rows).arg(stack.width).arg(stack.height);
            return;
        }
        cv::Mat values;
        frame.convertTo(values, CV_32F);
        loaded->reference = std::make_shared<const MotionReference>(values, stack.bitCount);
    });
}

void MotionCorrectionView::onReferenceLoaded()
{
    if (m_referencePending) {
        loadReferenceFrame();
        return;
    }
    const std::shared_ptr<LoadedReference> loaded = m_loaded;
    m_reference = loaded->reference;
    gv_reference->setFrame(std::move(loaded->pixels), loaded->width, loaded->height, stackInfo().bitCount);
    lb_reference->setText(loaded->error.isEmpty() ? ID::referenceFrameShownLabel()
                                                        .arg(sb_referenceFrame->value())
                                                        .arg(cb_referenceDataset->currentText())
                                                  : loaded->error);
    updatePreview();
    emit referenceFrameLoaded();
}

void MotionCorrectionView::previewShifts()
{
    if (m_shiftJob->isRunning())
        return;
    const ReferenceChoice choice = referenceChoice();
    const ImageStackInfo stack = stackInfo();
    const QString file = filepath();
    const QString stackPath = datapaths().value(0);
    const auto first = static_cast<std::size_t>(sb_firstFrame->value());
    const auto last = static_cast<std::size_t>(std::max(sb_firstFrame->value(), sb_lastFrame->value()));
    auto previewed = std::make_shared<PreviewedShifts>();
    m_previewed = previewed;
    m_shiftJob->start(ID::calculatingShiftsProgress(), [=](Feedback& feedback) {
        cv::Mat frame;
        if (!readStoredFrame(choice.filepath, choice.datapath, choice.frame, frame, previewed->error))
            return;
        if (frame.cols != stack.width || frame.rows != stack.height) {
            previewed->error =
                ID::referenceSizeMessage().arg(frame.cols).arg(frame.rows).arg(stack.width).arg(stack.height);
            return;
        }
        frame.convertTo(frame, CV_32F);
        FrameRegistration registration(std::make_shared<const MotionReference>(frame, stack.bitCount));
        LockedFileRead read(file, LockedFileRead::Wait::Yes);
        ImageFrameReader reader;
        if (!read.isOpen() || !reader.open(read.reader(), stackPath, previewed->error)) {
            previewed->error += read.error();
            return;
        }
        ProgressTracker progress(&feedback, last - first + 1);
        for (std::size_t k = first; k <= last && k < reader.info().frames; ++k) {
            if (feedback.isCanceled() || !reader.readFrame(k, frame, previewed->error))
                return;
            previewed->shifts.push_back(registration.measure(frame));
            previewed->time.push_back(reader.time()[k]);
            progress.update(k - first + 1);
        }
    });
}

void MotionCorrectionView::onShiftsPreviewed()
{
    const std::shared_ptr<PreviewedShifts> previewed = m_previewed;
    m_shiftPlot->setShifts(previewed->time, previewed->shifts);
    lb_shifts->setText(previewed->error);
    emit shiftsShown();
}

void MotionCorrectionView::showRunShifts(const QString& filepath, const QStringList& datapaths,
                                         const QStringList& errors)
{
    if (!errors.isEmpty() || datapaths.isEmpty())
        return;
    const QString stackPath = datapaths.first();
    const QString shiftsPath =
        stackPath.section(QLatin1Char('/'), 0, -2) + QLatin1Char('/') + ID::AlignmentShifts;
    LockedFileRead read(filepath);
    ImageFrameReader reader;
    std::vector<FrameShift> shifts;
    QString error;
    if (!read.isOpen())
        error = read.error();
    else if (reader.open(read.reader(), stackPath, error))
        AlignmentShifts::read(read.reader(), shiftsPath, shifts, error);
    m_shiftPlot->setShifts(reader.time(), shifts);
    lb_shifts->setText(error);
    emit shiftsShown();
}

} // namespace zarvi
