#pragma once

#include "roi/AbstractROIHandler.h"

namespace zarvi {

/// The one region of a purpose, as the crop rectangle or the background area: drawing a
/// new one replaces it once the new one is finished and valid (a stray click keeps the old
/// one). Its shape is chosen among the kinds the purpose offers; rectangles can be held
/// square ("Square": width equals height) while drawn. The region is number 1 and labelled
/// with the name the purpose gives it. GUI thread.
class RegionHandler : public AbstractROIHandler
{
    Q_OBJECT

public:
    /// `kinds` are the shapes offered, the first one chosen; `name` labels the region.
    RegionHandler(ZarviGraphicsView* view, const QList<RoiKind>& kinds, const QString& name,
                  QObject* parent = nullptr);

    /// The shape of the next region drawn; false for a kind not offered.
    bool setShapeKind(RoiKind kind);
    RoiKind shapeKind() const { return m_kind; }
    /// Holds the next rectangles drawn square.
    void setSquare(bool square) { m_square = square; }
    bool isSquare() const { return m_square; }
    bool hasRegion() const { return !rois().empty(); }
    /// The region; an empty shape (no points) when there is none.
    RoiShape region() const;

protected:
    std::shared_ptr<AbstractROI> beginRoi(const QPointF& scenePos) override;
    /// Replaces the previous region.
    void acceptRoi(std::shared_ptr<AbstractROI> roi) override;
    bool acceptsKind(RoiKind kind) const override;
    QColor roiColor() const override;

private:
    QList<RoiKind> m_kinds;
    QString m_name;
    RoiKind m_kind;
    bool m_square = false;
};

} // namespace zarvi
