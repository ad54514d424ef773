#include "GuiTestSupport.h"

#include "app/ApplicationStartup.h"
#include "app/MainWindow.h"
#include "app/browser/DataFileTreeWidget.h"
#include "app/browser/DisplayDataReader.h"
#include "app/browser/EventDisplayWidget.h"
#include "app/browser/EventMarks.h"
#include "app/browser/SignalPlotWidget.h"
#include "app/plugins/DatasetPlugin.h"
#include "common/EventTestFile.h"
#include "common/TempDir.h"
#include "datafile/DemoRecording.h"
#include "definitions/ZarviMainDefinitions.h"

#include <QCheckBox>
#include <QTabWidget>
#include <QTest>

#include <qcustomplot.h>

#include <algorithm>

#include <gtest/gtest.h>

using namespace zarvi;
using zarvi::test::TempDir;

namespace {

const QString signalGroup = QStringLiteral("DataAcquisition/Rig/Signals/Series1/Green");
const QString eventGroup = QStringLiteral("DataAcquisition/Rig/Events/Series1");
const QString lever = eventGroup + QStringLiteral("/Lever");
const QString tone = eventGroup + QStringLiteral("/Tone");
const QString empty = eventGroup + QStringLiteral("/Empty");
const std::vector<double> leverOnsets = {2.0, 5.0, 11.0};
const std::vector<double> leverOffsets = {3.0, 8.0, 12.5};
const std::vector<double> toneOnsets = {1.0, 6.0, 15.0};

// A 20 s ramp at 100 Hz (value = time) recorded with three event arrays.
bool writeEventFile(const QString& path)
{
    HDF5Writer_V6 writer;
    if (writer.create(path) < 0)
        return false;
    const bool ok = test::writeRampSignal(writer, signalGroup, 2000, 100.0) &&
                    test::writeEventArray(writer, eventGroup, "Lever", leverOnsets, leverOffsets, "Press") &&
                    test::writeEventArray(writer, eventGroup, "Tone", toneOnsets) &&
                    test::writeEventArray(writer, eventGroup, "Empty", {});
    writer.closeFile();
    return ok;
}

QColor blend(const QColor& over, int alpha, const QColor& under)
{
    auto mix = [&](int a, int b) { return (a * alpha + b * (255 - alpha)) / 255; };
    return QColor(mix(over.red(), under.red()), mix(over.green(), under.green()),
                  mix(over.blue(), under.blue()));
}

bool near(const QColor& a, const QColor& b)
{
    return std::abs(a.red() - b.red()) <= 3 && std::abs(a.green() - b.green()) <= 3 &&
           std::abs(a.blue() - b.blue()) <= 3;
}

/// The colours a plot shows around time `t` at value `value` (the pixel column of t
/// and its two neighbours, since a line lands on a whole pixel).
QList<QColor> colorsAt(QCustomPlot* plot, double t, double value)
{
    plot->replot(QCustomPlot::rpImmediateRefresh);
    const QImage image = plot->grab().toImage();
    const int x = static_cast<int>(plot->xAxis->coordToPixel(t));
    const int y = static_cast<int>(plot->yAxis->coordToPixel(value));
    return {image.pixelColor(x - 1, y), image.pixelColor(x, y), image.pixelColor(x + 1, y)};
}

bool showsColor(QCustomPlot* plot, double t, double value, const QColor& color)
{
    const QList<QColor> colors = colorsAt(plot, t, value);
    return std::any_of(colors.begin(), colors.end(), [&](const QColor& c) { return near(c, color); });
}

struct OpenedFile
{
    std::unique_ptr<MainWindow> window = std::make_unique<MainWindow>(nullptr);
    DatasetPlugin* plugin = nullptr;
};

OpenedFile openFile(const QString& file)
{
    OpenedFile opened;
    opened.plugin =
        qobject_cast<DatasetPlugin*>(opened.window->tabs().plugin(opened.window->openFile(file).tabIndex));
    return opened;
}

} // namespace

// Selecting event arrays in the tree: alone they make a raster, one labelled row
// each with a tick at every onset and a span to every offset; with a signal of their
// recording they are drawn over its plot; "Show over signals" brings that signal in.
TEST(EventDisplay, EventArraysAsARasterAndOverTheirSignals)
{
    TempDir dir;
    const QString file = dir.file("events.orvel");
    ASSERT_TRUE(writeEventFile(file));
    OpenedFile opened = openFile(file);
    ASSERT_NE(opened.plugin, nullptr);
    QStringList status;
    QObject::connect(opened.plugin, &AbstractPlugin::sendStatusMessage,
                     [&](const QString& text) { status << text; });
    QTabWidget* views = opened.plugin->viewTabs();

    // All three arrays in one raster, the first selected at the top.
    EXPECT_EQ(opened.plugin->displayPaths({empty, lever, tone}), 1);
    auto* raster = qobject_cast<EventDisplayWidget*>(views->currentWidget());
    ASSERT_NE(raster, nullptr);
    EXPECT_EQ(views->tabText(views->currentIndex()), QStringLiteral("Events"));
    ASSERT_EQ(raster->rowCount(), 3);
    EXPECT_EQ(raster->raster()->plottableCount(), 3);
    EXPECT_EQ(raster->raster()->itemCount(), 0);
    auto ticker = raster->raster()->yAxis->ticker().dynamicCast<QCPAxisTickerText>();
    ASSERT_TRUE(ticker);
    const QMap<double, QString> labels = {{0.0, "Tone"}, {1.0, "Press"}, {2.0, "Empty"}};
    EXPECT_EQ(ticker->ticks(), labels);
    EXPECT_EQ(raster->rowMarks(1)->onsets(), leverOnsets);
    EXPECT_EQ(raster->rowMarks(1)->offsets(), leverOffsets);
    EXPECT_EQ(raster->rowMarks(2)->onsets(), toneOnsets);
    EXPECT_TRUE(raster->rowMarks(2)->offsets().empty());
    EXPECT_TRUE(raster->rowMarks(0)->onsets().empty());
    EXPECT_TRUE(raster->overSignalsBox()->isVisibleTo(raster));

    // Tone with Green: the tone over the signal's plot, at its full height.
    EXPECT_EQ(opened.plugin->displayPaths({signalGroup, tone}), 1);
    auto* plot = qobject_cast<SignalPlotWidget*>(views->currentWidget());
    ASSERT_NE(plot, nullptr);
    ASSERT_EQ(plot->signalCount(), 1);
    ASSERT_EQ(plot->eventArrayCount(), 1);
    EXPECT_EQ(plot->eventMarks(0)->onsets(), toneOnsets);
    EXPECT_FALSE(plot->eventMarks(0)->band().has_value());
    EXPECT_EQ(plot->eventMarks(0)->name(), QStringLiteral("Tone"));

    // "Show over signals" reads the signal recorded with the array.
    EXPECT_EQ(opened.plugin->displayPaths({lever}), 1);
    auto* alone = qobject_cast<EventDisplayWidget*>(views->currentWidget());
    ASSERT_NE(alone, nullptr);
    EXPECT_EQ(views->tabText(views->currentIndex()), QStringLiteral("Lever"));
    EXPECT_EQ(alone->overlay(), nullptr);
    alone->overSignalsBox()->click();
    ASSERT_NE(alone->overlay(), nullptr);
    ASSERT_EQ(alone->overlay()->signalCount(), 1);
    EXPECT_EQ(alone->overlay()->plot()->graph(0)->name(), QStringLiteral("Green (V)"));
    ASSERT_EQ(alone->overlay()->eventArrayCount(), 1);
    EXPECT_EQ(alone->overlay()->eventMarks(0)->offsets(), leverOffsets);
    alone->overSignalsBox()->click();
    EXPECT_FALSE(alone->overSignalsBox()->isChecked());
    EXPECT_TRUE(status.isEmpty()) << status.join(' ').toStdString();
    EXPECT_EQ(test::openFileCount(), 0);
}

// What the plots paint: ticks at the onsets, translucent spans from onset to
// offset confined to the row in a raster and over the whole height on a signal,
// nothing where there is no event.
TEST(EventDisplay, MarksArePaintedAtTheEventTimes)
{
    TempDir dir;
    const QString file = dir.file("events.orvel");
    ASSERT_TRUE(writeEventFile(file));
    DisplayData data;
    QString error;
    ASSERT_TRUE(DisplayDataReader::read(file, {SignalDataset::valuesPath(signalGroup)}, {lever, tone, empty},
                                        data, error))
        << error.toStdString();
    ASSERT_EQ(data.eventList.size(), 3u);
    ASSERT_EQ(data.signalList.size(), 1u);
    const QColor background(ZarviMainDefinitions::ColorDarkerGrey);
    const QColor leverColor = EventMarks::color(0);
    const QColor toneColor = EventMarks::color(1);

    EventDisplayWidget raster({data.eventList[0], data.eventList[1], data.eventList[2]});
    raster.resize(800, 400);
    raster.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&raster));
    QCustomPlot* plot = raster.raster();
    const double press = raster.rowCentre(0);
    // A tick at each onset, the span's shade inside it, nothing past the offset.
    for (double onset : leverOnsets)
        EXPECT_TRUE(showsColor(plot, onset, press, leverColor)) << onset;
    EXPECT_TRUE(showsColor(plot, 6.5, press, blend(leverColor, 70, background)));
    EXPECT_TRUE(showsColor(plot, 9.5, press, background));
    // The span stays in its row: between the rows is background.
    EXPECT_TRUE(showsColor(plot, 6.5, press - 0.45, background));
    // Onsets only: ticks without spans.
    const double toneRow = raster.rowCentre(1);
    EXPECT_TRUE(showsColor(plot, 6.0, toneRow, toneColor));
    EXPECT_TRUE(showsColor(plot, 6.5, toneRow, background));
    // The empty row draws nothing.
    EXPECT_TRUE(showsColor(plot, 5.0, raster.rowCentre(2), background));

    SignalPlotWidget signal;
    signal.addSignal("Green", data.signalList[0].second);
    signal.addEvents(data.eventList[0]);
    signal.resize(800, 400);
    signal.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&signal));
    test::settle();
    // Value 18 is far above the ramp at t <= 12.5: only the events are there.
    EXPECT_TRUE(showsColor(signal.plot(), 5.0, 18.0, leverColor));
    EXPECT_TRUE(showsColor(signal.plot(), 6.5, 18.0, blend(leverColor, 70, background)));
    EXPECT_TRUE(showsColor(signal.plot(), 9.5, 18.0, background));
    EXPECT_TRUE(showsColor(signal.plot(), 6.5, 0.5, blend(leverColor, 70, background)));
}

// Ten thousand events with offsets are one plottable and no items.
TEST(EventDisplay, ManyEventsAreOnePlottable)
{
    std::vector<double> onsets, offsets;
    for (int i = 0; i < 10000; ++i) {
        onsets.push_back(i * 0.5);
        offsets.push_back(i * 0.5 + 0.2);
    }
    EventDisplayWidget raster({LabelledEvents{"x", "Licks", EventArray(onsets, offsets)}});
    raster.resize(800, 400);
    raster.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&raster));
    raster.raster()->replot(QCustomPlot::rpImmediateRefresh);
    EXPECT_EQ(raster.raster()->plottableCount(), 1);
    EXPECT_EQ(raster.raster()->itemCount(), 0);
    EXPECT_EQ(raster.rowMarks(0)->onsets().size(), 10000u);
    EXPECT_DOUBLE_EQ(raster.raster()->xAxis->range().center(), (0.0 + 4999.7) / 2);
}

// The demo recording's biosensor with its stimuli drawn over it, saved as a picture.
TEST(EventDisplay, ScreenshotOfASignalWithEventSpans)
{
    TempDir dir;
    const QString file = dir.file("demo.orvel");
    DemoTruth truth;
    QString error;
    ASSERT_TRUE(DemoRecording::write(file, DemoSettings{}, truth, error)) << error.toStdString();
    ApplicationStartup startup(*qApp, {dir.file("zarvi_Temp"), [](const QString&) {}});
    ASSERT_TRUE(startup.prepare());
    MainWindow* window = startup.showMainWindow();
    ASSERT_NE(window, nullptr);
    window->showNormal();
    window->resize(1600, 1000);
    const FileOpenResult opened = window->openFile(file);
    ASSERT_EQ(opened.outcome, OpenOutcome::OpenedData);
    auto* plugin = qobject_cast<DatasetPlugin*>(window->tabs().plugin(opened.tabIndex));
    ASSERT_NE(plugin, nullptr);
    const QString events = truth.eventPath + QLatin1Char('/') + truth.eventName;
    plugin->fileTree()->selectPaths({truth.biosensorPath, events});
    EXPECT_EQ(plugin->displayPaths({truth.biosensorPath, events}), 1);
    auto* plot = qobject_cast<SignalPlotWidget*>(plugin->viewTabs()->currentWidget());
    ASSERT_NE(plot, nullptr);
    ASSERT_EQ(plot->eventArrayCount(), 1);
    EXPECT_EQ(plot->eventMarks(0)->onsets(), truth.eventOnsets);
    EXPECT_EQ(plot->eventMarks(0)->offsets(), truth.eventOffsets);
    // Zoomed on the first minute, where single spans are wide enough to see.
    plot->plot()->xAxis->setRange(0.0, 60.0);
    test::settle(200);
    EXPECT_TRUE(window->grab().save(QStringLiteral(ZARVI_TEST_BINARY_DIR "/signal-event-spans.png")));
    startup.shutdown();
}
