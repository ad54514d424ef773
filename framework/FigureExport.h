#pragma once

#include "framework/PlotStyle.h"

#include <QSize>
#include <QSizeF>
#include <QString>

class QCustomPlot;

namespace zarvi {

/// Writes a plot as a figure for a paper or a poster: PNG, SVG or PDF, at a chosen size,
/// with a title above the plot, the axis labels given and the light (or dark) theme. The
/// plot on screen is drawn into the file, then put back exactly as it was shown. The
/// three formats are drawn alike, so that a point of text is a point on the page: the
/// plot is laid out at the size the page has on screen, then scaled to the page. GUI thread.
class FigureExport
{
public:
    enum class Format
    {
        Png,
        Svg,
        Pdf
    };

    struct Options
    {
        /// Gets the format's extension when it does not end with it.
        QString path;
        Format format = Format::Png;
        /// PNG: the image in pixels, exactly, and the resolution it is printed at, which
        /// sets how large text and lines are in it and is written into the file.
        QSize pixels{1200, 800};
        int dpi = 300;
        /// SVG and PDF: the page in millimetres.
        QSizeF millimetres{160.0, 100.0};
        /// Above the plot; none when empty.
        QString title;
        QString xLabel;
        QString yLabel;
        PlotStyle::Theme theme = PlotStyle::Theme::Light;
    };

    /// Writes `plot` to withExtension(options.path, options.format); false with `error`
    /// (rich text) when the file cannot be written.
    static bool write(QCustomPlot* plot, const Options& options, QString& error);

    /// "png", "svg" or "pdf".
    static QString extension(Format format);
    /// The format named by the extension of `path`, or `fallback` when it names none.
    static Format formatOf(const QString& path, Format fallback);
    /// `path`, with ".<extension>" appended when it does not end with it.
    static QString withExtension(const QString& path, Format format);
};

} // namespace zarvi
