#include "framework/FigureExport.h"

#include "definitions/FigureDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/PlotLookSnapshot.h"

#include <QFileInfo>
#include <QImage>
#include <QPdfWriter>
#include <QSvgGenerator>

#include <qcustomplot.h>

#include <algorithm>

namespace zarvi {

namespace {

constexpr double MillimetresPerInch = 25.4;

/// Dots per inch of the screen the plot's text is measured on: QCustomPlot lays text out
/// with the screen's font metrics, so every figure is drawn at this resolution, then scaled.
int screenDpi()
{
    return QImage(1, 1, QImage::Format_ARGB32).logicalDpiX();
}

int toScreenPixels(double millimetres)
{
    return std::max(1, qRound(millimetres / MillimetresPerInch * screenDpi()));
}

QCPTextElement* addTitle(QCustomPlot* plot, const FigureExport::Options& options)
{
    QFont font = plot->xAxis->labelFont();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.3);
    auto* title = new QCPTextElement(plot, options.title, font); // owned by the layout
    title->setTextColor(PlotStyle::textColor(options.theme));
    plot->plotLayout()->insertRow(0);
    plot->plotLayout()->addElement(0, 0, title);
    return title;
}

void removeTitle(QCustomPlot* plot, QCPTextElement* title)
{
    plot->plotLayout()->remove(title); // deletes it
    plot->plotLayout()->simplify();    // and the row it had
}

bool writePng(QCustomPlot* plot, const FigureExport::Options& options, const QString& path)
{
    // Laid out at the size the image has at the screen's resolution, then scaled up to
    // the pixels asked for, which the image has exactly.
    const double scale = static_cast<double>(std::max(1, options.dpi)) / screenDpi();
    const int width = std::max(1, qRound(options.pixels.width() / scale));
    const int height = std::max(1, qRound(options.pixels.height() / scale));
    QImage image(options.pixels, QImage::Format_ARGB32);
    image.fill(PlotStyle::backgroundColor(options.theme));
    QCPPainter painter(&image);
    if (scale > 1.0) // below 1, QCustomPlot keeps hairlines so that thin lines stay visible
        painter.setMode(QCPPainter::pmNonCosmetic);
    painter.scale(static_cast<double>(options.pixels.width()) / width,
                  static_cast<double>(options.pixels.height()) / height);
    plot->toPainter(&painter, width, height);
    painter.end();
    const int dotsPerMetre = qRound(options.dpi / MillimetresPerInch * 1000.0);
    image.setDotsPerMeterX(dotsPerMetre);
    image.setDotsPerMeterY(dotsPerMetre);
    return image.save(path, "PNG");
}

bool paintVector(QCustomPlot* plot, QPaintDevice* device, int width, int height)
{
    QCPPainter painter;
    if (!painter.begin(device)) // the file cannot be opened
        return false;
    painter.setMode(QCPPainter::pmVectorized);
    painter.setMode(QCPPainter::pmNonCosmetic);
    plot->toPainter(&painter, width, height);
    return painter.end();
}

bool writeSvg(QCustomPlot* plot, const FigureExport::Options& options, const QString& path)
{
    const QSize size(toScreenPixels(options.millimetres.width()),
                     toScreenPixels(options.millimetres.height()));
    QSvgGenerator svg;
    svg.setFileName(path);
    svg.setResolution(screenDpi()); // with the size, sets the page's width and height in mm
    svg.setSize(size);
    svg.setViewBox(QRect(QPoint(0, 0), size));
    svg.setTitle(options.title);
    return paintVector(plot, &svg, size.width(), size.height());
}

bool writePdf(QCustomPlot* plot, const FigureExport::Options& options, const QString& path)
{
    QPdfWriter pdf(path);
    pdf.setResolution(screenDpi());
    pdf.setCreator(ZarviMainDefinitions::ApplicationName);
    pdf.setTitle(options.title);
    const QPageSize page(options.millimetres, QPageSize::Millimeter, QString(), QPageSize::ExactMatch);
    if (!pdf.setPageLayout(QPageLayout(page, QPageLayout::Portrait, QMarginsF())))
        return false;
    return paintVector(plot, &pdf, pdf.width(), pdf.height());
}

} // namespace

bool FigureExport::write(QCustomPlot* plot, const Options& options, QString& error)
{
    const QString path = withExtension(options.path, options.format);
    const PlotLookSnapshot shown(plot);
    PlotStyle::apply(plot, options.theme);
    plot->xAxis->setLabel(options.xLabel);
    plot->yAxis->setLabel(options.yLabel);
    QCPTextElement* title = options.title.isEmpty() ? nullptr : addTitle(plot, options);

    bool written = false;
    switch (options.format) {
    case Format::Png:
        written = writePng(plot, options, path);
        break;
    case Format::Svg:
        written = writeSvg(plot, options, path);
        break;
    case Format::Pdf:
        written = writePdf(plot, options, path);
        break;
    }

    if (title)
        removeTitle(plot, title);
    shown.restore();
    plot->replot(QCustomPlot::rpQueuedReplot);
    if (!written)
        error = FigureDefinitions::cannotWriteMessage().arg(path.toHtmlEscaped());
    return written;
}

QString FigureExport::extension(Format format)
{
    switch (format) {
    case Format::Svg:
        return QStringLiteral("svg");
    case Format::Pdf:
        return QStringLiteral("pdf");
    case Format::Png:
        break;
    }
    return QStringLiteral("png");
}

FigureExport::Format FigureExport::formatOf(const QString& path, Format fallback)
{
    const QString suffix = QFileInfo(path).suffix();
    for (Format format : {Format::Png, Format::Svg, Format::Pdf})
        if (suffix.compare(extension(format), Qt::CaseInsensitive) == 0)
            return format;
    return fallback;
}

QString FigureExport::withExtension(const QString& path, Format format)
{
    const QString ending = QLatin1Char('.') + extension(format);
    return path.endsWith(ending, Qt::CaseInsensitive) ? path : path + ending;
}

} // namespace zarvi
