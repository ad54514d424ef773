#pragma once

class QCPAxis;
class QCustomPlot;

namespace zarvi {

/// The dark look the perievent plots share with the signal plots. GUI thread.
class PerieventPlotStyle
{
public:
    /// Background, axes and grid of a whole plot.
    static void apply(QCustomPlot* plot);
    /// Pens and text colours of one axis.
    static void apply(QCPAxis* axis);
};

} // namespace zarvi
