#include "framework/FigureExport.h"
#include "app/browser/SignalPlotWidget.h"
#include "common/TempDir.h"
#include "datafile/HDF5Writer_V6.h"
#include "datafile/SignalDataset.h"
#include "framework/FigureExportDialog.h"
#include "framework/PlotStyle.h"
#include "signal/SignalFileReader.h"

#include <QAction>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include <gtest/gtest.h>
#include <qcustomplot.h>

#include <cmath>
#include <numbers>

namespace zarvi {
namespace {

using Format = FigureExport::Format;

bool isDark(const QColor& color)
{
    return PlotStyle::luminance(color) < 0.25;
}

/// Dark pixels in the rectangle of `image`.
int darkPixels(const QImage& image, const QRect& area)
{
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            count += isDark(image.pixelColor(x, y)) ? 1 : 0;
    return count;
}

/// A 2 Hz sine of 10 s at 100 Hz, in volts, written to a data file and read back as
/// the browser reads it.
class FigureExportTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const QString file = dir.file(QStringLiteral("figure.orvel"));
        Signal written;
        written.unit = QStringLiteral("V");
        for (int i = 0; i < 1000; ++i) {
            written.time.push_back(i * 0.01);
            written.values.push_back(std::sin(2.0 * std::numbers::pi * 2.0 * i * 0.01));
        }
        QString error;
        {
            HDF5Writer_V6 writer;
            ASSERT_GE(writer.create(file), 0);
            ASSERT_TRUE(SignalDataset::write(writer, group, written, {}, error)) << error.toStdString();
        }
        ASSERT_TRUE(SignalFileReader::read(file, SignalDataset::valuesPath(group), signal, error))
            << error.toStdString();
        widget.resize(700, 400);
        widget.show();
        widget.addSignal(QStringLiteral("Biosensor"), signal);
        widget.plot()->replot();
    }

    FigureExport::Options options(const QString& name, Format format) const
    {
        FigureExport::Options chosen;
        chosen.path = dir.file(name);
        chosen.format = format;
        chosen.title = QStringLiteral("Session 3 biosensor");
        chosen.xLabel = QStringLiteral("Time after onset (s)");
        chosen.yLabel = QStringLiteral("Biosensor voltage (V)");
        return chosen;
    }

    test::TempDir dir;
    const QString group = QStringLiteral("DataAcquisition/Rig/Signals/Series1/Biosensor");
    Signal signal;
    SignalPlotWidget widget;
};

TEST_F(FigureExportTest, SignalPlotsNameTheirValueAxisByUnitAndOfferTheExport)
{
    QCustomPlot* plot = widget.plot();
    EXPECT_EQ(plot->xAxis->label(), QStringLiteral("Time (s)"));
    EXPECT_EQ(plot->yAxis->label(), QStringLiteral("Biosensor (V)"));
    EXPECT_EQ(widget.figureTitle(), QStringLiteral("Biosensor"));
    widget.addSignal(QStringLiteral("Isosbestic"), signal);
    EXPECT_EQ(plot->yAxis->label(), QStringLiteral("Signal (V)"));
    EXPECT_EQ(widget.figureTitle(), QStringLiteral("Biosensor, Isosbestic"));
    widget.addSignal(QStringLiteral("Counts"), Signal{signal.time, signal.values, QString()});
    EXPECT_EQ(plot->yAxis->label(), QStringLiteral("Signal"));
    ASSERT_TRUE(plot->actions().contains(widget.exportFigureAction()));
    EXPECT_EQ(widget.exportFigureAction()->text(), QStringLiteral("Export Figure..."));
}

TEST_F(FigureExportTest, PngHasTheSizeAskedALightThemeAndTheTitleAndTheScreenPlotIsUntouched)
{
    QCustomPlot* plot = widget.plot();
    const QColor legendText = plot->legend->item(0)->textColor();
    const QColor trace = plot->graph(0)->pen().color();

    // Typed without an extension: the file gets ".png".
    FigureExport::Options chosen = options(QStringLiteral("biosensor"), Format::Png);
    chosen.pixels = QSize(1200, 800);
    chosen.dpi = 300;
    QString error;
    ASSERT_TRUE(FigureExport::write(plot, chosen, error)) << error.toStdString();
    EXPECT_FALSE(QFile::exists(dir.file(QStringLiteral("biosensor"))));
    QImage image(dir.file(QStringLiteral("biosensor.png")));
    ASSERT_FALSE(image.isNull());
    // A copy for people to look at.
    image.save(QStringLiteral(ZARVI_TEST_BINARY_DIR "/figure-export.png"));

    // Exactly the pixels asked for (no extra scale), and 300 dpi = 300 / 0.0254 dots per metre.
    EXPECT_EQ(image.size(), QSize(1200, 800));
    EXPECT_NEAR(image.dotsPerMeterX(), 300 / 0.0254, 1.0);
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(1199, 799), QColor(Qt::white));
    // Tick labels and the axis label are dark text in the bottom band.
    EXPECT_GT(darkPixels(image, QRect(0, 700, 1200, 100)), 200);
    // The title is centred above the plot: dark text in the middle of the top band,
    // where a figure without title has none (the legend sits at the right).
    const QRect titleBand(400, 0, 400, 60);
    EXPECT_GT(darkPixels(image, titleBand), 100);
    chosen.title.clear();
    ASSERT_TRUE(FigureExport::write(plot, chosen, error)) << error.toStdString();
    EXPECT_LT(darkPixels(QImage(dir.file(QStringLiteral("biosensor.png"))), titleBand), 5);

    // The plot on screen is as it was.
    EXPECT_EQ(PlotStyle::backgroundOf(plot).color(), QColor(QStringLiteral("#302f2f")));
    EXPECT_EQ(plot->xAxis->label(), QStringLiteral("Time (s)"));
    EXPECT_EQ(plot->yAxis->label(), QStringLiteral("Biosensor (V)"));
    EXPECT_EQ(plot->xAxis->tickLabelColor(), QColor(QStringLiteral("#cccccc")));
    EXPECT_EQ(plot->legend->item(0)->textColor(), legendText);
    EXPECT_EQ(plot->graph(0)->pen().color(), trace);
    EXPECT_EQ(plot->plotLayout()->rowCount(), 1);
    EXPECT_TRUE(plot->findChildren<QCPTextElement*>().isEmpty());
    const QImage shown = plot->toPixmap(300, 200).toImage();
    EXPECT_EQ(shown.pixelColor(0, 0), QColor(QStringLiteral("#302f2f")));
}

TEST_F(FigureExportTest, SvgIsXmlOfThePageSizeWithTheTitleAndLabels)
{
    const FigureExport::Options chosen = options(QStringLiteral("biosensor.svg"), Format::Svg);
    QString error;
    ASSERT_TRUE(FigureExport::write(widget.plot(), chosen, error)) << error.toStdString();
    QFile file(chosen.path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&file);
    QString width, height, texts;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == QStringLiteral("svg")) {
            width = xml.attributes().value(QStringLiteral("width")).toString();
            height = xml.attributes().value(QStringLiteral("height")).toString();
        }
        if (xml.isCharacters())
            texts += xml.text().toString() + QLatin1Char('\n');
    }
    ASSERT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    // 160 x 100 mm, drawn on whole pixels at 96 dpi: within half a pixel, 0.13 mm.
    ASSERT_TRUE(width.endsWith(QStringLiteral("mm"))) << width.toStdString();
    ASSERT_TRUE(height.endsWith(QStringLiteral("mm"))) << height.toStdString();
    EXPECT_NEAR(width.chopped(2).toDouble(), 160.0, 0.14);
    EXPECT_NEAR(height.chopped(2).toDouble(), 100.0, 0.14);
    EXPECT_TRUE(texts.contains(chosen.title)) << texts.toStdString();
    EXPECT_TRUE(texts.contains(chosen.xLabel));
    EXPECT_TRUE(texts.contains(chosen.yLabel));
}

TEST_F(FigureExportTest, PdfIsAPageOfTheSizeAsked)
{
    FigureExport::Options chosen = options(QStringLiteral("biosensor.PDF"), Format::Pdf);
    chosen.millimetres = QSizeF(85.0, 60.0);
    QString error;
    ASSERT_TRUE(FigureExport::write(widget.plot(), chosen, error)) << error.toStdString();
    QFile file(chosen.path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray pdf = file.readAll();
    ASSERT_TRUE(pdf.startsWith("%PDF"));
    // The page in points, 72 to the inch: 85 mm = 240.94 pt, 60 mm = 170.08 pt.
    const QRegularExpressionMatch box =
        QRegularExpression(QStringLiteral(R"(/MediaBox\s*\[\s*0\s+0\s+([\d.]+)\s+([\d.]+)\s*\])"))
            .match(QString::fromLatin1(pdf));
    ASSERT_TRUE(box.hasMatch());
    EXPECT_NEAR(box.captured(1).toDouble(), 240.94, 1.0);
    EXPECT_NEAR(box.captured(2).toDouble(), 170.08, 1.0);
}

TEST_F(FigureExportTest, NamesTakeTheExtensionOfTheFormatAndFilesThatCannotBeWrittenAreSaid)
{
    EXPECT_EQ(FigureExport::withExtension(QStringLiteral("/data/fig"), Format::Svg),
              QStringLiteral("/data/fig.svg"));
    EXPECT_EQ(FigureExport::withExtension(QStringLiteral("fig.PNG"), Format::Png), QStringLiteral("fig.PNG"));
    EXPECT_EQ(FigureExport::withExtension(QStringLiteral("fig.svg"), Format::Pdf),
              QStringLiteral("fig.svg.pdf"));
    EXPECT_EQ(FigureExport::formatOf(QStringLiteral("a.b/fig.Pdf"), Format::Png), Format::Pdf);
    EXPECT_EQ(FigureExport::formatOf(QStringLiteral("fig.tif"), Format::Svg), Format::Svg);

    for (Format format : {Format::Png, Format::Svg, Format::Pdf}) {
        FigureExport::Options chosen = options(QStringLiteral("missing/folder/fig"), format);
        QString error;
        EXPECT_FALSE(FigureExport::write(widget.plot(), chosen, error));
        EXPECT_EQ(error, QStringLiteral("Unable to write the figure <b>%1</b>.")
                             .arg(FigureExport::withExtension(chosen.path, format)));
    }
}

TEST_F(FigureExportTest, TheLightThemeDarkensOnlyColoursTooPaleForWhitePaper)
{
    // #cccccc has luminance 0.8: it is darkened to at most 0.6 and stays a grey.
    const QColor grey = PlotStyle::readableOnWhite(QColor(QStringLiteral("#cccccc")));
    EXPECT_LE(PlotStyle::luminance(grey), PlotStyle::MaxLuminanceOnWhite);
    EXPECT_GT(PlotStyle::luminance(grey), 0.3);
    EXPECT_EQ(grey.red(), grey.green());
    EXPECT_EQ(grey.green(), grey.blue());
    // The palette's blue: 0.299 * 78 + 0.587 * 156 + 0.114 * 207 = 138.5 of 255 = 0.54, kept.
    EXPECT_EQ(PlotStyle::readableOnWhite(QColor(QStringLiteral("#4e9ccf"))),
              QColor(QStringLiteral("#4e9ccf")));

    QCustomPlot* plot = widget.plot();
    plot->graph(0)->setPen(QPen(QColor(QStringLiteral("#cccccc"))));
    PlotStyle::apply(plot, PlotStyle::Theme::Light);
    EXPECT_EQ(plot->graph(0)->pen().color(), grey);
    EXPECT_EQ(PlotStyle::backgroundOf(plot).color(), QColor(Qt::white));
    EXPECT_EQ(plot->yAxis->labelColor(), QColor(Qt::black));
    EXPECT_EQ(plot->legend->item(0)->textColor(), QColor(Qt::black));
}

TEST_F(FigureExportTest, TheDialogStartsFromThePlotWritesTheFormatChosenAndRemembersIt)
{
    QCustomPlot* plot = widget.plot();
    {
        FigureExportDialog dialog(plot, widget.figureTitle());
        FigureExport::Options proposed = dialog.options();
        EXPECT_EQ(proposed.title, QStringLiteral("Biosensor"));
        EXPECT_EQ(proposed.xLabel, QStringLiteral("Time (s)"));
        EXPECT_EQ(proposed.yLabel, QStringLiteral("Biosensor (V)"));
        EXPECT_EQ(proposed.theme, PlotStyle::Theme::Light);
        EXPECT_TRUE(proposed.path.endsWith(QStringLiteral("/Biosensor.png"))) << proposed.path.toStdString();

        // Choosing SVG swaps the extension; a name typed without one gets it on export.
        auto* format = dialog.findChild<QComboBox*>(QStringLiteral("cb_format"));
        format->setCurrentIndex(format->findText(QStringLiteral("SVG drawing")));
        EXPECT_TRUE(dialog.options().path.endsWith(QStringLiteral("/Biosensor.svg")));
        EXPECT_FALSE(dialog.findChild<QDoubleSpinBox*>(QStringLiteral("dsb_mmWidth"))->isHidden());
        dialog.findChild<QDoubleSpinBox*>(QStringLiteral("dsb_mmWidth"))->setValue(120.0);
        dialog.setPath(dir.file(QStringLiteral("typed")));
        dialog.accept();
        EXPECT_EQ(dialog.result(), QDialog::Accepted);
        EXPECT_TRUE(QFile::exists(dir.file(QStringLiteral("typed.svg"))));
    }
    FigureExportDialog next(plot, widget.figureTitle());
    EXPECT_EQ(next.options().format, Format::Svg);
    EXPECT_DOUBLE_EQ(next.options().millimetres.width(), 120.0);
    EXPECT_EQ(next.options().path, dir.file(QStringLiteral("Biosensor.svg")));
}

} // namespace
} // namespace zarvi
