#pragma once

#include "roi/RoiShape.h"

#include <QColor>
#include <QList>
#include <QObject>
#include <QPoint>
#include <QPointer>

#include <memory>
#include <vector>

class QKeyEvent;
class QMouseEvent;

namespace zarvi {

class AbstractROI;
class ZarviGraphicsView;

/// Manages the regions of interest of one purpose (cells, a crop or background region, and
/// later the behaviour shapes) on one ZarviGraphicsView. While it is the view's active
/// handler it receives the view's mouse and key events through its event filter:
/// - a left press on empty image deselects every ROI and begins a new ROI of the handler's
///   shape there (state 2); moves draw it, the release finishes it, except a polygon, which
///   takes a vertex per click and is finished by a double-click; a finished ROI that is not
///   valid (a click without a drag, say) is dropped;
/// - a left press on one of its ROIs leaves the event to the scene, which selects the ROI,
///   and its drag moves it; on release the moved points are checked and, when no longer
///   valid, restored exactly from the copy taken at the press;
/// - Delete removes the selected ROIs, Escape drops the ROI being drawn.
/// A press is on an ROI when it falls within the ROI's bounding rectangle. New ROIs take
/// the view's image size when made. A locked handler takes the presses and does nothing
/// with them. Valid means: the points the kind needs, all strictly inside the image, and a
/// size above zero (area, or a line's length). Every change is announced with the ROI as a
/// RoiShape. GUI thread.
class AbstractROIHandler : public QObject
{
    Q_OBJECT

public:
    explicit AbstractROIHandler(ZarviGraphicsView* view, QObject* parent = nullptr);

    /// The view's events while active; true when the handler consumed the event.
    bool eventFilter(QObject* watched, QEvent* event) override;
    /// Ends the ROI being drawn: a valid one joins the handler, any other is dropped.
    virtual void finishDrawing();
    /// After a drag: when the edited ROI's points differ from the copy taken at the press,
    /// a valid shape becomes the copy and is announced, an invalid one is restored from it.
    virtual void checkEdit();
    /// Takes `roi` out of the view and of the handler; false when it is not one of its ROIs.
    virtual bool removeRoi(const AbstractROI* roi);

    const std::vector<std::shared_ptr<AbstractROI>>& rois() const { return m_rois; }
    std::vector<RoiShape> shapes() const;
    /// Adds a shape (read from the file, typed, imported) as the handler does a drawn one;
    /// false with a message when the handler does not take its kind or it is not valid on
    /// the view's current image.
    bool addShape(const RoiShape& shape, QString& error);
    /// Names one of the handler's ROIs; the label then shows the name.
    bool setRoiName(const AbstractROI* roi, const QString& name);
    void removeSelected();
    /// Removes every ROI and drops the one being drawn.
    void clear();

    /// Set by the view when it installs or removes the handler. An inactive handler's ROIs
    /// stay visible but take no mouse events.
    void setActive(bool active);
    bool isActive() const { return m_active; }
    void setLocked(bool locked) { m_locked = locked; }
    bool isLocked() const { return m_locked; }
    /// The ROI being drawn; null when none.
    AbstractROI* drawing() const { return m_drawing.get(); }
    /// Null once the view is gone.
    ZarviGraphicsView* view() const;

    /// Whether `roi` is valid (see the class comment); false with the reason in `error`.
    static bool isValidRoi(const AbstractROI& roi, QString& error);

signals:
    void roiAdded(const zarvi::RoiShape& shape);
    void roiChanged(const zarvi::RoiShape& shape);
    void roiRemoved(const zarvi::RoiShape& shape);

protected:
    /// A new ROI of the handler's shape started at the press position (state 2), made with
    /// makeRoi(); null when the position is not strictly inside the image.
    virtual std::shared_ptr<AbstractROI> beginRoi(const QPointF& scenePos) = 0;
    /// Where a finished valid ROI goes (added with a number, or replacing the one region);
    /// announced through insertRoi().
    virtual void acceptRoi(std::shared_ptr<AbstractROI> roi) = 0;
    /// Whether the handler takes ROIs of `kind` (drawn or added).
    virtual bool acceptsKind(RoiKind kind) const = 0;
    /// The colour of the handler's ROIs, so the purposes sharing a view stay apart.
    virtual QColor roiColor() const = 0;

    /// A new ROI of `kind` on the view's image, in the handler's colour, not yet shown.
    std::shared_ptr<AbstractROI> makeRoi(RoiKind kind) const;
    /// Appends `roi` to the handler's ROIs and announces it.
    void insertRoi(std::shared_ptr<AbstractROI> roi);

private:
    bool mousePress(QMouseEvent* event);
    void mouseMove(QMouseEvent* event);
    bool mouseRelease(QMouseEvent* event);
    bool keyPress(QKeyEvent* event);
    bool isDrawingOpenPolygon() const;
    void cancelDrawing();
    std::shared_ptr<AbstractROI> roiAt(const QPointF& scenePos) const;

    QPointer<ZarviGraphicsView> m_view;
    std::vector<std::shared_ptr<AbstractROI>> m_rois;
    std::shared_ptr<AbstractROI> m_drawing;
    std::shared_ptr<AbstractROI> m_edited;
    QList<QPoint> m_editedPoints;
    bool m_active = false;
    bool m_pressed = false;
    bool m_locked = false;
};

} // namespace zarvi
