#pragma once

#include <QBrush>
#include <QPointer>
#include <QVariant>

#include <vector>

class QCustomPlot;

namespace zarvi {

/// What a theme or a figure changes on a plot, taken when made: the background, and every
/// pen, colour and label of its axes, grids, legend, titles, plottables and items. restore()
/// puts them back, so that a plot shown on screen looks exactly as before after a figure of
/// it was drawn in another theme with other labels. Elements added in between are not
/// removed by it. GUI thread.
class PlotLookSnapshot
{
public:
    explicit PlotLookSnapshot(QCustomPlot* plot);

    void restore() const;

private:
    struct Property
    {
        QPointer<QObject> object;
        const char* name;
        QVariant value;
    };

    QPointer<QCustomPlot> m_plot;
    QBrush m_background;
    std::vector<Property> m_properties;
};

} // namespace zarvi
