#pragma once

#include <QBrush>
#include <QColor>

class QCPAxis;
class QCustomPlot;

namespace zarvi {

/// The look every plot of the program shares, in one place: dark on screen, in the
/// palette's greys, and light for figures printed on white (black text and axes, a light
/// grey grid, data colours darkened where they would be too pale to read). A plot takes
/// the light theme only for as long as a figure is drawn; PlotLookSnapshot puts it back.
/// GUI thread.
class PlotStyle
{
public:
    enum class Theme
    {
        Dark,
        Light
    };

    /// Background, every axis with its grid, the legend and its entries and any title of
    /// a whole plot. The light theme also darkens pale data pens and opaque fills.
    static void apply(QCustomPlot* plot, Theme theme = Theme::Dark);
    /// Pens and text colours of one axis and its grid.
    static void apply(QCPAxis* axis, Theme theme = Theme::Dark);

    static QColor backgroundColor(Theme theme);
    /// The brush `plot` paints its background with (QCustomPlot offers no getter).
    static QBrush backgroundOf(const QCustomPlot* plot);
    static QColor textColor(Theme theme);
    /// `color` with its hue kept, darkened until its luminance is at most MaxLuminanceOnWhite.
    static QColor readableOnWhite(const QColor& color);

    /// Luminance (0 to 1, Rec. 601 weights) above which a colour fades into white paper.
    static constexpr double MaxLuminanceOnWhite = 0.6;
    static double luminance(const QColor& color);
};

} // namespace zarvi
