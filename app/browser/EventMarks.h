#pragma once

#include "events/EventArray.h"

#include <qcustomplot.h>

#include <optional>

namespace zarvi {

/// The events of one array drawn as a single plottable: a line at each onset and,
/// where the array has offsets, a semi-transparent span from onset to offset. Only
/// the events in view are drawn, and spans that touch on screen are painted as one,
/// so ten thousand events cost one pass over two vectors rather than ten thousand
/// items. In a raster the marks fill a band of the value axis (one row); over signals
/// they run the full height of the plot. Not selectable. GUI thread.
class EventMarks : public QCPAbstractPlottable
{
    Q_OBJECT

public:
    /// The plot owns the marks, as it owns every plottable.
    EventMarks(QCPAxis* keyAxis, QCPAxis* valueAxis, EventArray events, const QColor& color);

    /// Confines the marks to [low, high] of the value axis.
    void setBand(double low, double high);
    std::optional<QCPRange> band() const { return m_band; }
    const std::vector<double>& onsets() const { return m_events.onsets(); }
    const std::vector<double>& offsets() const { return m_events.offsets(); }

    /// Colours of event arrays in the order they are shown.
    static QColor color(std::size_t index);

    double selectTest(const QPointF& pos, bool onlySelectable, QVariant* details = nullptr) const override;
    QCPRange getKeyRange(bool& foundRange, QCP::SignDomain inSignDomain = QCP::sdBoth) const override;
    QCPRange getValueRange(bool& foundRange, QCP::SignDomain inSignDomain = QCP::sdBoth,
                           const QCPRange& inKeyRange = QCPRange()) const override;

protected:
    void draw(QCPPainter* painter) override;
    void drawLegendIcon(QCPPainter* painter, const QRectF& rect) const override;

private:
    /// Top and bottom of the marks, in pixels.
    std::pair<double, double> verticalExtent() const;

    EventArray m_events;
    std::optional<QCPRange> m_band;
};

} // namespace zarvi
