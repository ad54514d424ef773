#include "image/operations/roisignals/ROISignalsView.h"

#include "datafile/HDF5Writer_V6.h"
#include "definitions/ImageOperationDefinitions.h"
#include "framework/BackgroundJob.h"
#include "framework/FileAccessLock.h"
#include "framework/LockedFileRead.h"
#include "roi/AbstractROI.h"
#include "roi/CellsHandler.h"
#include "roi/ImageJRoiReader.h"
#include "roi/RoiStore.h"
#include "roi/ZarviGraphicsView.h"

#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QToolButton>

#include <algorithm>

namespace zarvi {

using ID = ImageOperationDefinitions;

namespace {

/// A stored ROI's name, on its list entry.
constexpr int NameRole = Qt::UserRole;
/// An unsaved cell's item, on its list entry.
constexpr int CellRole = Qt::UserRole + 1;

bool isCellKind(RoiKind kind)
{
    return CellsHandler::shapeKinds().contains(kind);
}

QToolButton* makeButton(QWidget* parent, const QString& objectName, const QString& text,
                        const QString& tooltip)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(objectName);
    button->setText(text);
    button->setToolTip(tooltip);
    return button;
}

} // namespace

/// What a save or a removal reports back to the GUI thread.
struct ROISignalsView::StoreResult
{
    QStringList names;
    QString error;
};

ROISignalsView::ROISignalsView(QWidget* parent)
    : ImageOperationView(ID::ROISignalsOperation, parent),
      m_job(std::make_unique<BackgroundJob>(tr("Progress")))
{
    QFormLayout* cells = addParameterGroup(ID::drawCellsTitle(), QStringLiteral("gb_drawCells"));
    cb_cellShape = new QComboBox(this);
    cb_cellShape->setObjectName(QStringLiteral("cb_cellShape"));
    for (RoiKind kind : CellsHandler::shapeKinds())
        cb_cellShape->addItem(roiKindName(kind), static_cast<int>(kind));
    cells->addRow(ID::shapeLabel(), cb_cellShape);

    QFormLayout* list = addParameterGroup(ID::roiListTitle(), QStringLiteral("gb_rois"));
    lw_rois = new QListWidget(this);
    lw_rois->setObjectName(QStringLiteral("lw_rois"));
    lw_rois->setToolTip(ID::roiListTooltip());
    list->addRow(lw_rois);
    lb_roisValidation = makeValidationLabel(QStringLiteral("lb_roisValidation"));
    list->addRow(lb_roisValidation);
    tb_saveCells =
        makeButton(this, QStringLiteral("tb_saveCells"), ID::saveCellsLabel(), ID::saveCellsTooltip());
    tb_removeRoi =
        makeButton(this, QStringLiteral("tb_removeRoi"), ID::removeRoiLabel(), ID::removeRoiTooltip());
    tb_importRois = makeButton(this, QStringLiteral("tb_importRois"), ID::importRoisLabel(), QString());
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(tb_saveCells);
    buttons->addWidget(tb_removeRoi);
    buttons->addWidget(tb_importRois);
    buttons->addStretch(1);
    list->addRow(buttons);

    m_cells = new CellsHandler(preview()->inputView(), this);
    preview()->inputView()->setActiveHandler(m_cells);
    connect(cb_cellShape, &QComboBox::currentIndexChanged, this,
            [this] { m_cells->setShapeKind(static_cast<RoiKind>(cb_cellShape->currentData().toInt())); });
    connect(m_cells, &AbstractROIHandler::roiAdded, this, &ROISignalsView::rebuildList);
    connect(m_cells, &AbstractROIHandler::roiChanged, this, &ROISignalsView::rebuildList);
    connect(m_cells, &AbstractROIHandler::roiRemoved, this, &ROISignalsView::rebuildList);
    connect(preview(), &ImageFramePreview::previewUpdated, this, &ROISignalsView::showStoredCells);
    connect(tb_saveCells, &QToolButton::clicked, this, &ROISignalsView::saveCells);
    connect(tb_removeRoi, &QToolButton::clicked, this, &ROISignalsView::removeCurrentRoi);
    connect(tb_importRois, &QToolButton::clicked, this, [this] {
        const QString path =
            QFileDialog::getOpenFileName(this, ID::importRoisLabel(), QString(), ID::importRoisFilter());
        if (!path.isEmpty())
            importRois(path);
    });
    connect(m_job.get(), &BackgroundJob::finished, this, [this] {
        if (m_afterJob)
            std::exchange(m_afterJob, nullptr)();
    });
}

ROISignalsView::~ROISignalsView() = default;

void ROISignalsView::datasetsChanged()
{
    ImageOperationView::datasetsChanged();
    m_storedNames.clear();
    m_storedCells.clear();
    m_cells->clear();
    m_cellsShown = false;
    setValidationText(lb_roisValidation, QString());
    if (!datapaths().isEmpty()) {
        LockedFileRead read(filepath());
        std::vector<RoiShape> stored;
        QString error;
        if (!read.isOpen())
            error = read.error();
        else if (!RoiStore::list(read.reader(), datapaths().first(), stored, error))
            stored.clear();
        setValidationText(lb_roisValidation, error);
        for (const RoiShape& roi : stored) {
            m_storedNames << roi.name;
            if (isCellKind(roi.kind))
                m_storedCells.push_back(roi);
        }
    }
    // The cells are drawn once the first frame of this stack is shown (showStoredCells).
    rebuildList();
}

void ROISignalsView::showStoredCells()
{
    if (m_cellsShown || preview()->inputView()->imageSize().isEmpty())
        return;
    m_cellsShown = true;
    // A stored cell the view cannot draw (one touching the image border) stays in the list.
    QString error;
    for (const RoiShape& cell : m_storedCells)
        m_cells->addShape(cell, error);
}

std::vector<std::shared_ptr<AbstractROI>> ROISignalsView::unsavedCells() const
{
    std::vector<std::shared_ptr<AbstractROI>> unsaved;
    for (const auto& roi : m_cells->rois())
        if (!m_storedNames.contains(roi->name()))
            unsaved.push_back(roi);
    return unsaved;
}

void ROISignalsView::rebuildList()
{
    QStringList unchecked;
    for (int i = 0; i < lw_rois->count(); ++i) {
        const QListWidgetItem* item = lw_rois->item(i);
        if (item->data(NameRole).isValid() && item->checkState() == Qt::Unchecked)
            unchecked << item->data(NameRole).toString();
    }
    lw_rois->clear();
    for (const RoiShape& cell : m_storedCells) {
        auto* item =
            new QListWidgetItem(QStringLiteral("%1 (%2)").arg(cell.name, roiKindName(cell.kind)), lw_rois);
        item->setData(NameRole, cell.name);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(unchecked.contains(cell.name) ? Qt::Unchecked : Qt::Checked);
    }
    for (const auto& cell : unsavedCells()) {
        auto* item = new QListWidgetItem(
            QStringLiteral("%1 (%2) %3").arg(cell->label(), roiKindName(cell->kind()), ID::notSavedSuffix()),
            lw_rois);
        item->setData(CellRole, QVariant::fromValue(reinterpret_cast<quintptr>(cell.get())));
        QFont font = item->font();
        font.setItalic(true);
        item->setFont(font);
    }
}

bool ROISignalsView::importRois(const QString& path)
{
    std::vector<RoiShape> shapes;
    QString error;
    QStringList problems;
    if (!ImageJRoiReader::read(path, shapes, error))
        problems << error;
    for (const RoiShape& shape : shapes) {
        const bool named = std::any_of(m_cells->rois().begin(), m_cells->rois().end(),
                                       [&shape](const auto& roi) { return roi->name() == shape.name; });
        if (named || m_storedNames.contains(shape.name))
            problems << tr("An ROI named <b>%1</b> already exists.").arg(shape.name);
        else if (!m_cells->addShape(shape, error))
            problems << error;
    }
    if (!problems.isEmpty())
        showMessage(ID::roiErrorTitle(), problems.join(QStringLiteral("<br>")), QString(),
                    QMessageBox::Critical);
    return problems.isEmpty();
}

void ROISignalsView::runStoreJob(std::function<bool(HDF5Writer_V6&, StoreResult&)> work,
                                 std::function<void(const StoreResult&)> done)
{
    auto result = std::make_shared<StoreResult>();
    const QString path = filepath();
    m_afterJob = [this, result, done = std::move(done)] {
        if (!result->error.isEmpty())
            showMessage(ID::roiErrorTitle(), result->error, QString(), QMessageBox::Critical);
        else
            done(*result);
        rebuildList();
        emit storeUpdated(result->error.isEmpty());
    };
    m_job->start(ID::savingRoisProgress(), [path, result, work = std::move(work)](Feedback&) {
        // The lock first, so that the file is closed before the lock is released.
        const auto lock = FileAccessLock::lock(path);
        HDF5Writer_V6 file;
        if (file.open(path) < 0) {
            result->error = file.lastError();
            return;
        }
        if (work(file, *result) && !file.flush())
            result->error = file.lastError();
        file.closeFile();
    });
}

void ROISignalsView::saveCells()
{
    const std::vector<std::shared_ptr<AbstractROI>> cells = unsavedCells();
    if (m_job->isRunning() || datapaths().isEmpty())
        return;
    if (cells.empty()) {
        emit storeUpdated(true);
        return;
    }
    std::vector<RoiShape> shapes;
    for (const auto& cell : cells) {
        RoiShape shape = cell->toShape();
        // A drawn cell keeps its number in its name; the store picks the next free one when it is taken.
        if (shape.name.isEmpty() && !m_storedNames.contains(QStringLiteral("ROI%1").arg(shape.number)))
            shape.name = QStringLiteral("ROI%1").arg(shape.number);
        shapes.push_back(std::move(shape));
    }
    const QString stack = datapaths().first();
    const int width = static_cast<int>(stackInfo().width), height = static_cast<int>(stackInfo().height);
    runStoreJob(
        [stack, shapes, width, height](HDF5Writer_V6& file, StoreResult& result) {
            return RoiStore::add(file, stack, shapes, width, height, result.names, result.error);
        },
        [this, cells, shapes](const StoreResult& result) {
            for (std::size_t i = 0; i < cells.size() && i < static_cast<std::size_t>(result.names.size());
                 ++i) {
                RoiShape stored = shapes[i];
                stored.name = result.names[static_cast<qsizetype>(i)];
                m_storedNames << stored.name;
                m_storedCells.push_back(stored);
                m_cells->setRoiName(cells[i].get(), stored.name);
            }
        });
}

void ROISignalsView::removeCurrentRoi()
{
    const QListWidgetItem* item = lw_rois->currentItem();
    if (!item || m_job->isRunning())
        return;
    if (!item->data(NameRole).isValid()) {
        const auto cell = reinterpret_cast<const AbstractROI*>(item->data(CellRole).value<quintptr>());
        m_cells->removeRoi(cell);
        return;
    }
    const QString name = item->data(NameRole).toString();
    const QString stack = datapaths().first();
    runStoreJob(
        [stack, name](HDF5Writer_V6& file, StoreResult& result) {
            return RoiStore::remove(file, stack, name, result.error);
        },
        [this, name](const StoreResult&) {
            m_storedNames.removeAll(name);
            std::erase_if(m_storedCells, [&name](const RoiShape& cell) { return cell.name == name; });
            if (const AbstractROI* cell = cellNamed(name))
                m_cells->removeRoi(cell);
        });
}

const AbstractROI* ROISignalsView::cellNamed(const QString& name) const
{
    for (const auto& roi : m_cells->rois())
        if (roi->name() == name)
            return roi.get();
    return nullptr;
}

bool ROISignalsView::buildParameters(QVariantMap& parameters)
{
    QString problem;
    QStringList names;
    for (int i = 0; i < lw_rois->count(); ++i) {
        const QListWidgetItem* item = lw_rois->item(i);
        if (item->data(NameRole).isValid() && item->checkState() == Qt::Checked)
            names << item->data(NameRole).toString();
    }
    if (!unsavedCells().empty())
        problem = ID::unsavedCellsMessage();
    else if (m_storedCells.empty())
        problem = ID::noRoisMessage().arg(datapaths().value(0));
    else if (names.isEmpty())
        problem = ID::noRoiCheckedMessage();
    setValidationText(lb_roisValidation, problem);
    if (!problem.isEmpty())
        return false;
    parameters.insert(ID::ROINames, names);
    return true;
}

} // namespace zarvi
