#pragma once

class QCPAxis;
class QCustomPlot;

namespace zarvi {

/// The dark look every plot of the program shares: background, axis pens, text and
/// dotted grid in the palette's greys. GUI thread.
class PlotStyle
{
public:
    /// Background, axes and grid of a whole plot.
    static void apply(QCustomPlot* plot);
    /// Pens and text colours of one axis.
    static void apply(QCPAxis* axis);
};

} // namespace zarvi
