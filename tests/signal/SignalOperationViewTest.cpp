#include "SignalOpsTestSupport.h"
#include "common/TempDir.h"

#include "framework/BackgroundJob.h"
#include "framework/OperationDialog.h"
#include "framework/OperationViewRegistry.h"
#include "framework/PlotStyle.h"
#include "signal/operations/decimation/DecimationView.h"
#include "signal/operations/filter/FilterView.h"
#include "signal/operations/smooth/SmoothView.h"

#include <QApplication>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLayout>
#include <QSignalSpy>
#include <QSpinBox>

#include <qcustomplot.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace zarvi {
namespace {

/// A 100 Hz signal with a 5 Hz wave, so half the sample rate is 50 Hz.
class SignalViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        Signal signal;
        for (int i = 0; i < 4000; ++i) {
            signal.time.push_back(i / 100.0);
            signal.values.push_back(1.0 + std::sin(2 * std::numbers::pi * 5.0 * i / 100.0));
        }
        input = test::writeSignal(file, QStringLiteral("DataAcquisition/Rig/Signals/Series1/Green"), signal);
    }

    template <typename View> void prepare(View& view)
    {
        view.setMessagePresenter(
            [this](const QString&, const QString& message, const QString&, int) { messages << message; });
        view.setupProcess(file, {input});
    }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("view.orvel"));
    QString input;
    QStringList messages;
};

QString shownText(const QWidget& view, const char* name)
{
    const auto* label = view.findChild<QLabel*>(QString::fromLatin1(name));
    return label && !label->isHidden() ? label->text() : QString();
}

TEST_F(SignalViewTest, FilterViewShowsWhyCutoffsAreRefusedAndRunsOnceTheyAreConsistent)
{
    FilterView view;
    prepare(view);
    EXPECT_DOUBLE_EQ(view.sampleRate(), 100.0);
    QSignalSpy started(&view, &AbstractOperationView::sendStartProcess);

    view.typeBox()->setCurrentText(QStringLiteral("BandPass"));
    view.lowBox()->setValue(60.0);
    view.highBox()->setValue(70.0);
    EXPECT_EQ(shownText(view, "lb_lowCutoffValidation"),
              QStringLiteral("*Low value must be less than half of the sample rate."));
    EXPECT_EQ(shownText(view, "lb_highCutoffValidation"),
              QStringLiteral("*High value must be less than half of the sample rate."));
    EXPECT_FALSE(view.run());

    view.lowBox()->setValue(20.0);
    view.highBox()->setValue(10.0);
    EXPECT_EQ(shownText(view, "lb_lowCutoffValidation"),
              QStringLiteral("*Low value must be lower than high value."));
    EXPECT_EQ(shownText(view, "lb_highCutoffValidation"), QString());
    EXPECT_FALSE(view.run());
    EXPECT_EQ(started.count(), 0);

    // The preview: the signal's spectrum and the response of the filter as set.
    view.lowBox()->setValue(2.0);
    view.highBox()->setValue(10.0);
    EXPECT_EQ(shownText(view, "lb_lowCutoffValidation"), QString());
    // The spectrum is read and computed off the GUI thread.
    if (view.spectrumJob()->isRunning()) {
        QSignalSpy spectrumDone(view.spectrumJob(), &BackgroundJob::finished);
        ASSERT_TRUE(spectrumDone.wait(20000));
    }
    QCustomPlot* plot = view.plot();
    ASSERT_EQ(plot->graphCount(), 2);
    // Dark like every other plot: the palette's darker grey, #302f2f, and light grey text.
    EXPECT_EQ(PlotStyle::backgroundOf(plot).color(), QColor(QStringLiteral("#302f2f")));
    EXPECT_EQ(plot->toPixmap(60, 40).toImage().pixelColor(0, 0), QColor(QStringLiteral("#302f2f")));
    EXPECT_EQ(plot->xAxis->labelColor(), QColor(QStringLiteral("#cccccc")));
    EXPECT_EQ(plot->graph(0)->name(), QStringLiteral("Signal FFT"));
    EXPECT_EQ(plot->graph(1)->name(), QStringLiteral("Filter Respone"));
    EXPECT_EQ(plot->xAxis->label(), QStringLiteral("Frequency (Hz)"));
    EXPECT_EQ(plot->yAxis->label(), QStringLiteral("Amplitude (dB)"));
    EXPECT_GT(plot->graph(0)->dataCount(), 1000);
    EXPECT_EQ(plot->graph(1)->dataCount(), 2000);
    // The 5 Hz wave is the largest bin after the mean.
    double peakFrequency = 0.0;
    double peak = -1e9;
    for (auto it = plot->graph(0)->data()->constBegin() + 1; it != plot->graph(0)->data()->constEnd(); ++it) {
        if (it->value > peak) {
            peak = it->value;
            peakFrequency = it->key;
        }
    }
    EXPECT_NEAR(peakFrequency, 5.0, 0.05);

    QSignalSpy finished(&view, &AbstractOperationView::sendProcessFinished);
    ASSERT_TRUE(view.run());
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_TRUE(finished.first().at(2).toStringList().isEmpty());
    const QVariantMap sent = started.first().first().toMap();
    EXPECT_EQ(sent.value(QStringLiteral("FilterType")).toString(), QStringLiteral("BandPass"));
    EXPECT_EQ(sent.value(QStringLiteral("HighCutoffFrequency")).toDouble(), 10.0);
    EXPECT_EQ(sent.value(QStringLiteral("FilterName")).toString(), QStringLiteral("Butterworth"));

    // A low-pass filter sends its one cut-off only, and ignores the high field.
    view.typeBox()->setCurrentText(QStringLiteral("LowPass"));
    EXPECT_FALSE(view.highBox()->isEnabled());
    EXPECT_EQ(shownText(view, "lb_highCutoffValidation"), QString());
    ASSERT_TRUE(view.run());
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_FALSE(started.last().first().toMap().contains(QStringLiteral("HighCutoffFrequency")));
    EXPECT_TRUE(messages.isEmpty());
}

TEST_F(SignalViewTest, FilterPreviewDrawsTheHalfPowerPointOnTheCutoff)
{
    FilterView view;
    prepare(view);
    view.typeBox()->setCurrentText(QStringLiteral("LowPass"));
    view.lowBox()->setValue(2.0);
    const QCPGraph* response = view.plot()->graph(1);
    ASSERT_GT(response->dataCount(), 100);
    // The first plotted frequency where the curve falls below half power (-3.0103 dB),
    // interpolated between the two points around it.
    const double halfPower = 20.0 * std::log10(1.0 / std::sqrt(2.0));
    double knee = -1.0;
    for (auto it = response->data()->constBegin() + 1; it != response->data()->constEnd(); ++it) {
        const auto before = it - 1;
        if (it->value < halfPower) {
            knee = before->key +
                   (halfPower - before->value) / (it->value - before->value) * (it->key - before->key);
            break;
        }
    }
    EXPECT_NEAR(knee, 2.0, 0.01);
    // The curve ends at half the sample rate.
    EXPECT_DOUBLE_EQ((response->data()->constEnd() - 1)->key, 50.0);
}

TEST_F(SignalViewTest, DecimationViewRefusesAFactorLargerThanTheSignalBesideTheField)
{
    DecimationView view;
    prepare(view);
    QSignalSpy started(&view, &AbstractOperationView::sendStartProcess);
    // 4000 samples: a factor of 3999 keeps samples 0 and 3999, 4000 only sample 0.
    view.factorBox()->setValue(5000);
    EXPECT_EQ(shownText(view, "lb_decimationFactorValidation"),
              QStringLiteral("Bad value for decimation factor."));
    EXPECT_FALSE(view.run());
    view.factorBox()->setValue(4000);
    EXPECT_FALSE(view.run());
    view.factorBox()->setValue(3999);
    EXPECT_EQ(shownText(view, "lb_decimationFactorValidation"), QString());
    QSignalSpy finished(&view, &AbstractOperationView::sendProcessFinished);
    ASSERT_TRUE(view.run());
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_EQ(started.count(), 1);
    EXPECT_TRUE(messages.isEmpty());
}

TEST_F(SignalViewTest, FilterDialogOpensReadableWrapsItsNotesAtItsWidthAndGrowsItsPlot)
{
    auto* view = new FilterView;
    prepare(*view);
    auto* dialog = new OperationDialog(view);
    dialog->show();
    const auto settle = [dialog] {
        QCoreApplication::sendPostedEvents();
        dialog->layout()->activate();
    };
    settle();
    // On a 1600 x 1000 screen the dialog opens at its readable size.
    EXPECT_GE(dialog->width(), 900);
    EXPECT_GE(dialog->height(), 640);

    view->typeBox()->setCurrentText(QStringLiteral("BandPass"));
    view->lowBox()->setValue(60.0);
    settle();
    const auto* note = dialog->findChild<QLabel*>(QStringLiteral("lb_lowCutoffValidation"));
    ASSERT_TRUE(note->isVisible());
    // The whole text on one line: not a word per line, and not cut.
    EXPECT_GE(note->width(), note->fontMetrics().horizontalAdvance(note->text()));
    EXPECT_LT(note->height(), 2 * note->fontMetrics().lineSpacing());
    EXPECT_TRUE(dialog->grab().save(QStringLiteral(ZARVI_TEST_BINARY_DIR "/filter-dialog.png")));

    const int plotHeight = view->plot()->height();
    dialog->resize(dialog->width(), dialog->height() + 200);
    settle();
    EXPECT_GE(view->plot()->height(), plotHeight + 150);
    delete dialog;
}

TEST_F(SignalViewTest, SmoothViewRefusesAWindowShorterThanOneSample)
{
    SmoothView view;
    prepare(view);
    QSignalSpy started(&view, &AbstractOperationView::sendStartProcess);
    view.methodBox()->setCurrentText(QStringLiteral("Running Average"));
    view.timeFrameBox()->setValue(0.005); // half a sample at 100 Hz
    EXPECT_EQ(shownText(view, "lb_smoothTimeFrameValidation"),
              QStringLiteral("*Time frame must be at least one sample long."));
    EXPECT_FALSE(view.run());

    view.methodBox()->setCurrentText(QStringLiteral("Low-pass Butterworth Filter"));
    EXPECT_EQ(shownText(view, "lb_smoothTimeFrameValidation"), QString());
    view.frequencyBox()->setValue(50.0);
    EXPECT_EQ(shownText(view, "lb_smoothFrequencyValidation"),
              QStringLiteral("*Cutoff value must be less than half of the sample rate."));
    EXPECT_FALSE(view.run());
    EXPECT_EQ(started.count(), 0);

    view.methodBox()->setCurrentText(QStringLiteral("Running Average"));
    view.timeFrameBox()->setValue(0.05);
    QSignalSpy finished(&view, &AbstractOperationView::sendProcessFinished);
    ASSERT_TRUE(view.run());
    ASSERT_TRUE(finished.wait(20000));
    const QVariantMap sent = started.first().first().toMap();
    EXPECT_EQ(sent.value(QStringLiteral("SmoothMethod")).toString(), QStringLiteral("Running Average"));
    EXPECT_FALSE(sent.contains(QStringLiteral("SmoothFrequency(Hz)")));
    EXPECT_EQ(finished.first().at(1).toStringList(),
              QStringList{QStringLiteral("DataProcessed/Rig/Signals/Series1/SmoothedSignals1/Green/Signal")});
}

TEST(OperationViewRegistry, MakesTheViewOfEverySignalOperation)
{
    for (const QString& name : {QStringLiteral("Filter"), QStringLiteral("Smooth Signals"),
                                QStringLiteral("Decimation"), QStringLiteral("Photometry deltaF/F")}) {
        const std::unique_ptr<AbstractOperationView> view = OperationViewRegistry::instance().create(name);
        ASSERT_TRUE(view) << name.toStdString();
        EXPECT_EQ(view->operationName(), name);
    }
}

} // namespace
} // namespace zarvi
