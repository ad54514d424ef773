#include "image/operations/removebackground/RemoveBackgroundView.h"

#include "definitions/ImageOperationDefinitions.h"
#include "image/operations/removebackground/BackgroundRemoval.h"
#include "roi/RegionHandler.h"
#include "roi/RoiJson.h"
#include "roi/ZarviGraphicsView.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>

namespace zarvi {

using ID = ImageOperationDefinitions;

namespace {

const QList<RoiKind> backgroundKinds{RoiKind::Rectangle, RoiKind::Circle, RoiKind::Polygon,
                                     RoiKind::Freehand};

} // namespace

RemoveBackgroundView::RemoveBackgroundView(QWidget* parent) : ImageOperationView(ID::RemoveBackground, parent)
{
    QFormLayout* form = addParameterGroup(ID::drawBackgroundTitle(), QStringLiteral("gb_drawBackground"));
    cb_shape = new QComboBox(this);
    cb_shape->setObjectName(QStringLiteral("cb_shape"));
    for (RoiKind kind : backgroundKinds)
        cb_shape->addItem(roiKindName(kind), static_cast<int>(kind));
    cb_shape->setToolTip(ID::backgroundCoordinatesTooltip());
    form->addRow(ID::shapeLabel(), cb_shape);
    lb_backgroundValidation = makeValidationLabel(QStringLiteral("lb_backgroundValidation"));
    form->addRow(lb_backgroundValidation);

    m_region = new RegionHandler(preview()->inputView(), backgroundKinds, ID::backgroundRoiName(), this);
    preview()->inputView()->setActiveHandler(m_region);
    connect(cb_shape, &QComboBox::currentIndexChanged, this,
            [this] { m_region->setShapeKind(static_cast<RoiKind>(cb_shape->currentData().toInt())); });
    connect(m_region, &AbstractROIHandler::roiAdded, this, &RemoveBackgroundView::onRegionChanged);
    connect(m_region, &AbstractROIHandler::roiChanged, this, &RemoveBackgroundView::onRegionChanged);
    connect(m_region, &AbstractROIHandler::roiRemoved, this, &RemoveBackgroundView::onRegionChanged);
    connect(preview(), &ImageFramePreview::previewUpdated, this, &RemoveBackgroundView::restoreRegion);
}

void RemoveBackgroundView::restoreRegion()
{
    if (m_restored || preview()->inputView()->imageSize().isEmpty())
        return;
    m_restored = true;
    std::vector<RoiShape> remembered;
    QString error;
    const QVariant value = rememberedParameters().value(ID::BackgroundCoordinates);
    if (m_region->hasRegion() || !roisFromJson(value, remembered, error) || remembered.size() != 1)
        return;
    // A region that does not fit this stack is simply not drawn.
    if (m_region->addShape(remembered.front(), error))
        cb_shape->setCurrentText(roiKindName(remembered.front().kind));
}

void RemoveBackgroundView::onRegionChanged()
{
    setValidationText(lb_backgroundValidation, QString());
    updatePreview();
}

QString RemoveBackgroundView::coordinates() const
{
    if (!m_region->hasRegion())
        return {};
    // The region's label is for the screen; the parameter holds the shape and its points.
    RoiShape region = m_region->region();
    region.name.clear();
    region.number = 0;
    const QString json = roiToJson(region);
    const QSize image = preview()->inputView()->imageSize();
    RoiShape checked;
    return BackgroundRemoval::readRegion(json, cv::Size(image.width(), image.height()), checked) ? json
                                                                                                 : QString();
}

bool RemoveBackgroundView::buildParameters(QVariantMap& parameters)
{
    const QString json = coordinates();
    if (json.isEmpty()) {
        setValidationText(lb_backgroundValidation, ID::backgroundCoordinatesMessage());
        return false;
    }
    parameters.insert(ID::BackgroundCoordinates, json);
    return true;
}

ImageFramePreview::Computation RemoveBackgroundView::previewComputation() const
{
    const QString json = coordinates();
    if (json.isEmpty())
        return {};
    const QSize image = preview()->inputView()->imageSize();
    const cv::Size frameSize(image.width(), image.height());
    RoiShape region;
    BackgroundRemoval::readRegion(json, frameSize, region);
    const BackgroundRemoval removal(region, frameSize);
    return [removal](const cv::Mat& input, cv::Mat& output) {
        removal.apply(input, output);
        return true;
    };
}

} // namespace zarvi
