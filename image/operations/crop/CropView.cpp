#include "image/operations/crop/CropView.h"

#include "definitions/ImageOperationDefinitions.h"
#include "image/operations/crop/FrameCrop.h"
#include "roi/AbstractROI.h"
#include "roi/RegionHandler.h"
#include "roi/RoiGeometry.h"
#include "roi/ZarviGraphicsView.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QScopedValueRollback>
#include <QSpinBox>
#include <QToolButton>

#include <algorithm>

namespace zarvi {

using ID = ImageOperationDefinitions;

namespace {

/// Bounds of the fields until a stack tells the frame size.
constexpr int UnknownFrameSide = 100000;

QSpinBox* makeField(const QString& objectName, int minimum, QWidget* parent)
{
    auto* box = new QSpinBox(parent);
    box->setObjectName(objectName);
    box->setRange(minimum, UnknownFrameSide);
    return box;
}

/// Two fields side by side, for one row of the form.
QWidget* pair(QSpinBox* first, QSpinBox* second, QWidget* parent)
{
    auto* row = new QWidget(parent);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(first, 1);
    layout->addWidget(second, 1);
    return row;
}

} // namespace

CropView::CropView(QWidget* parent) : ImageOperationView(ID::Crop, parent)
{
    QFormLayout* form = addParameterGroup(ID::cropCoordinatesLabel(), QStringLiteral("gb_cropCoordinates"));
    sb_x = makeField(QStringLiteral("sb_x"), 0, this);
    sb_y = makeField(QStringLiteral("sb_y"), 0, this);
    sb_width = makeField(QStringLiteral("sb_width"), 1, this);
    sb_height = makeField(QStringLiteral("sb_height"), 1, this);
    for (QSpinBox* box : {sb_width, sb_height})
        box->setToolTip(ID::sizeTooltip());
    auto* sizeLabel = new QLabel(ID::sizeLabel(), this);
    sizeLabel->setToolTip(ID::sizeTooltip());
    form->addRow(ID::topLeftLabel(), pair(sb_x, sb_y, this));
    form->addRow(sizeLabel, pair(sb_width, sb_height, this));
    lb_cropValidation = makeValidationLabel(QStringLiteral("lb_cropValidation"));
    form->addRow(lb_cropValidation);

    cb_square = new QCheckBox(ID::squareLabel(), this);
    cb_square->setObjectName(QStringLiteral("cb_square"));
    cb_square->setToolTip(ID::squareTooltip());
    form->addRow(cb_square);
    tb_drawCropArea = new QToolButton(this);
    tb_drawCropArea->setObjectName(QStringLiteral("tb_drawCropArea"));
    tb_drawCropArea->setText(ID::drawCropAreaLabel());
    tb_drawCropArea->setCheckable(true);
    form->addRow(tb_drawCropArea);

    m_region = new RegionHandler(preview()->inputView(), {RoiKind::Rectangle}, ID::cropAreaName(), this);

    if (const QVariantList last = rememberedParameters().value(ID::CropCoordinates).toList();
        last.size() == 4) {
        setCoordinates(last[0].toInt(), last[1].toInt(), last[2].toInt(), last[3].toInt());
        m_hasArea = true;
    }
    for (QSpinBox* box : {sb_x, sb_y, sb_width, sb_height})
        connect(box, &QSpinBox::valueChanged, this, [this, box] { onFieldEdited(box); });
    connect(cb_square, &QCheckBox::toggled, this, &CropView::onSquareToggled);
    connect(tb_drawCropArea, &QToolButton::toggled, this, [this](bool drawing) {
        ZarviGraphicsView* view = preview()->inputView();
        if (drawing)
            view->setActiveHandler(m_region);
        else if (view->activeHandler() == m_region)
            view->clearActiveHandler();
    });
    connect(m_region, &RegionHandler::roiAdded, this, &CropView::onRegionDrawn);
    connect(m_region, &RegionHandler::roiChanged, this, &CropView::onRegionDrawn);
    connect(preview(), &ImageFramePreview::previewUpdated, this, [this] {
        // The rectangle is placed once the frame it lies on is shown, and again on a new frame size.
        const AbstractROI* shown = m_region->hasRegion() ? m_region->rois().front().get() : nullptr;
        if (!shown || QSize(shown->imageWidth(), shown->imageHeight()) != preview()->inputView()->imageSize())
            showRegion();
    });
}

void CropView::datasetsChanged()
{
    const std::vector<double> previous = m_hasArea ? coordinates() : std::vector<double>{};
    ImageOperationView::datasetsChanged();
    m_region->clear();
    const ImageStackInfo& info = stackInfo();
    if (info.width <= 0 || info.height <= 0) {
        validate();
        return;
    }
    // The area kept from before (or from the last run) when it fits this stack, else the whole frame.
    cv::Rect area;
    if (cropRectangle(previous, cv::Size(info.width, info.height), area) != CropProblem::None)
        area = cv::Rect(0, 0, info.width, info.height);
    if (cb_square->isChecked())
        area.width = area.height = std::min(area.width, area.height);
    {
        const QScopedValueRollback guard(m_syncing, true);
        sb_x->setRange(0, info.width - 1);
        sb_y->setRange(0, info.height - 1);
        sb_width->setRange(1, info.width);
        sb_height->setRange(1, info.height);
    }
    setCoordinates(area.x, area.y, area.width, area.height);
    m_hasArea = true;
    fieldsChanged();
}

bool CropView::buildParameters(QVariantMap& parameters)
{
    if (!validate())
        return false;
    parameters.insert(ID::CropCoordinates,
                      QVariantList{sb_x->value(), sb_y->value(), sb_width->value(), sb_height->value()});
    return true;
}

ImageFramePreview::Computation CropView::previewComputation() const
{
    return [coordinates = coordinates()](const cv::Mat& input, cv::Mat& output) {
        cv::Rect area;
        if (cropRectangle(coordinates, input.size(), area) != CropProblem::None)
            return false;
        output = input(area).clone();
        return true;
    };
}

std::vector<double> CropView::coordinates() const
{
    return {static_cast<double>(sb_x->value()), static_cast<double>(sb_y->value()),
            static_cast<double>(sb_width->value()), static_cast<double>(sb_height->value())};
}

void CropView::setCoordinates(int x, int y, int width, int height)
{
    const QScopedValueRollback guard(m_syncing, true);
    sb_x->setValue(x);
    sb_y->setValue(y);
    sb_width->setValue(width);
    sb_height->setValue(height);
}

bool CropView::validate()
{
    const ImageStackInfo& info = stackInfo();
    cv::Rect area;
    const CropProblem problem = info.width > 0 && info.height > 0
                                    ? cropRectangle(coordinates(), cv::Size(info.width, info.height), area)
                                    : CropProblem::None;
    setValidationText(lb_cropValidation, problem == CropProblem::BadCoordinates ? ID::cropCoordinatesMessage()
                                         : problem == CropProblem::OutsideFrame ? ID::cropOutsideMessage()
                                                                                : QString());
    return problem == CropProblem::None;
}

void CropView::onFieldEdited(QSpinBox* field)
{
    if (m_syncing)
        return;
    if (cb_square->isChecked() && (field == sb_width || field == sb_height)) {
        QSpinBox* partner = field == sb_width ? sb_height : sb_width;
        const QScopedValueRollback guard(m_syncing, true);
        partner->setValue(field->value());
        // The partner stops at the frame's other side: the field comes back to it.
        field->setValue(partner->value());
    }
    fieldsChanged();
}

void CropView::onSquareToggled(bool square)
{
    m_region->setSquare(square);
    if (!square || sb_width->value() == sb_height->value())
        return;
    const int side = std::min(sb_width->value(), sb_height->value());
    setCoordinates(sb_x->value(), sb_y->value(), side, side);
    fieldsChanged();
}

void CropView::onRegionDrawn(const RoiShape& shape)
{
    if (m_syncing)
        return;
    const cv::Rect bounds = roiBounds(shape);
    setCoordinates(bounds.x, bounds.y, bounds.width, bounds.height);
    validate();
    updatePreview();
}

void CropView::showRegion()
{
    const QSize image = preview()->inputView()->imageSize();
    if (image.isEmpty())
        return;
    const QScopedValueRollback guard(m_syncing, true);
    const QPoint topLeft(sb_x->value(), sb_y->value());
    const QPoint bottomRight(topLeft.x() + sb_width->value() - 1, topLeft.y() + sb_height->value() - 1);
    if (m_region->hasRegion()) {
        AbstractROI& roi = *m_region->rois().front();
        if (QSize(roi.imageWidth(), roi.imageHeight()) == image) {
            roi.setAllPoints({topLeft, bottomRight});
            return;
        }
        m_region->clear();
    }
    RoiShape shape;
    shape.kind = RoiKind::Rectangle;
    shape.points = {cv::Point(topLeft.x(), topLeft.y()), cv::Point(bottomRight.x(), bottomRight.y())};
    // An area touching the frame's edge could not have been drawn: none is shown until one is.
    QString error;
    m_region->addShape(shape, error);
}

void CropView::fieldsChanged()
{
    validate();
    showRegion();
    updatePreview();
}

} // namespace zarvi
