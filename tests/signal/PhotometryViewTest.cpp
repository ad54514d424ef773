#include "SignalOpsTestSupport.h"
#include "common/TempDir.h"

#include "definitions/FileDefinitions.h"
#include "framework/BackgroundJob.h"
#include "framework/OperationDialog.h"
#include "framework/OperationRunner.h"
#include "framework/OperationSettings.h"
#include "framework/PlotStyle.h"
#include "signal/SignalPipeline.h"
#include "signal/operations/photometry/PhotometryDeltaFView.h"
#include "signal/operations/photometry/PhotometryPreviewPlots.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLayout>
#include <QSignalSpy>
#include <QSpinBox>
#include <QToolButton>

#include <qcustomplot.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace zarvi {
namespace {

/// 200 s of the demo recording: enough events to see the transient, quick to write.
class PhotometryViewTest : public ::testing::Test
{
protected:
    void SetUp() override { truth = test::writeSmallDemo(file, 200.0); }

    void prepare(PhotometryDeltaFView& view, const QStringList& datapaths)
    {
        view.setMessagePresenter([this](const QString& title, const QString& message, const QString&, int) {
            titles << title;
            messages << message;
        });
        view.setupProcess(file, datapaths);
    }

    template <typename Widget> static Widget* child(const QWidget& view, const char* name)
    {
        Widget* widget = view.findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }

    /// Decimation by 10, a 10 Hz low-pass, standard z-scores and a residual threshold of 0.5.
    static void setStages(const PhotometryDeltaFView& view)
    {
        child<QCheckBox>(view, "cb_decimation")->setChecked(true);
        child<QSpinBox>(view, "sb_decimationFactor")->setValue(10);
        child<QCheckBox>(view, "cb_smooth")->setChecked(true);
        child<QComboBox>(view, "cb_smoothMethod")
            ->setCurrentText(QStringLiteral("Low-pass Butterworth Filter"));
        child<QDoubleSpinBox>(view, "dsb_smoothFrequency")->setValue(10.0);
        child<QCheckBox>(view, "cb_removeSlope")->setChecked(false);
        child<QCheckBox>(view, "cb_standardize")->setChecked(true);
        child<QComboBox>(view, "cb_standardizeMethod")->setCurrentText(QStringLiteral("Standard Z Score"));
        child<QDoubleSpinBox>(view, "dsb_residualThreshold")->setValue(0.5);
    }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("demo.orvel"));
    DemoTruth truth;
    QStringList titles;
    QStringList messages;
};

TEST_F(PhotometryViewTest, ViewAndCommandLineRunsWriteTheSameValuesAndAttributes)
{
    PhotometryDeltaFView view;
    prepare(view, {truth.isosbesticPath, truth.biosensorPath});
    EXPECT_EQ(child<QComboBox>(view, "cb_isosbesticName")->currentText(), QStringLiteral("Isosbestic"));
    EXPECT_EQ(child<QComboBox>(view, "cb_biosensorName")->currentText(), QStringLiteral("Biosensor"));
    setStages(view);
    QSignalSpy started(&view, &AbstractOperationView::sendStartProcess);
    QSignalSpy finished(&view, &AbstractOperationView::sendProcessFinished);

    // The line fit draws its samples with the C library's rand(), which the operation never
    // seeds (repeated runs may pick other samples). Seeding it the same way before each run
    // makes the two runs draw the same samples, so any difference comes from the parameters.
    std::srand(1);
    ASSERT_TRUE(view.run());
    ASSERT_TRUE(finished.wait(60000));
    ASSERT_TRUE(finished.first().at(2).toStringList().isEmpty()) << messages.join(' ').toStdString();
    const QStringList fromView = finished.first().at(1).toStringList();
    ASSERT_EQ(fromView.size(), 1);

    // The same run as a JSON parameter file gives it: every number a real.
    const QVariantMap json{{FileDefinitions::Operations, QStringLiteral("Photometry deltaF/F")},
                           {QStringLiteral("IsosbesticName"), QStringLiteral("Isosbestic")},
                           {QStringLiteral("BiosensorName"), QStringLiteral("Biosensor")},
                           {QStringLiteral("DecimationFactor"), 10.0},
                           {QStringLiteral("SmoothMethod"), QStringLiteral("Low-pass Butterworth Filter")},
                           {QStringLiteral("SmoothFrequency(Hz)"), 10.0},
                           {QStringLiteral("StandardizeMethod"), QStringLiteral("Standard Z Score")},
                           {QStringLiteral("ResidualThreshold"), 0.5}};
    // Unchecked stages sent no key: the view's map is the JSON one plus the file and the inputs.
    QVariantMap sent = started.first().first().toMap();
    sent.remove(FileDefinitions::Filepath);
    sent.remove(FileDefinitions::SourceDatapaths);
    EXPECT_EQ(sent.keys(), json.keys());

    OperationRunner runner;
    std::srand(1);
    const RunResult fromCli = runner.run(json, file, {truth.isosbesticPath, truth.biosensorPath});
    ASSERT_TRUE(fromCli.succeeded()) << fromCli.errors.join(' ').toStdString();
    ASSERT_EQ(fromCli.datapaths.size(), 1);
    EXPECT_EQ(fromView.first(),
              QStringLiteral("DataProcessed/FiberPhotometry/Signals/Series1/DFFSignals1/Biosensor/Signal"));
    EXPECT_EQ(fromCli.datapaths.first(),
              QStringLiteral("DataProcessed/FiberPhotometry/Signals/Series1/DFFSignals2/Biosensor/Signal"));

    const Signal a = test::readSignal(file, fromView.first());
    const Signal b = test::readSignal(file, fromCli.datapaths.first());
    EXPECT_EQ(a.values, b.values);
    EXPECT_EQ(a.time, b.time);
    EXPECT_EQ(a.unit, QStringLiteral("z-score"));
    const QVariantMap viewAttributes = test::attributesOf(file, fromView.first());
    EXPECT_EQ(viewAttributes, test::attributesOf(file, fromCli.datapaths.first()));
    EXPECT_EQ(viewAttributes.value(QStringLiteral("DecimationFactor")).typeId(), QMetaType::Int);
    EXPECT_EQ(viewAttributes.value(QStringLiteral("ResidualThreshold")).typeId(), QMetaType::Double);
    EXPECT_EQ(test::attributesOf(
                  file, QStringLiteral("DataProcessed/FiberPhotometry/Signals/Series1/DFFSignals1"), true),
              test::attributesOf(
                  file, QStringLiteral("DataProcessed/FiberPhotometry/Signals/Series1/DFFSignals2"), true));

    // The event-locked transient shows in the result.
    double rise = 0.0;
    for (const double onset : truth.eventOnsets)
        rise += test::meanBetween(a, onset + truth.transientPeakLatency - 0.1,
                                  onset + truth.transientPeakLatency + 0.1) -
                test::meanBetween(a, onset - 1.0, onset);
    EXPECT_GT(rise / static_cast<double>(truth.eventOnsets.size()), 0.4);
}

TEST_F(PhotometryViewTest, PreviewDrawsSignalsSlopesAndTheFit)
{
    PhotometryDeltaFView view;
    // Only the isosbestic signal is selected; its biosensor partner is found in the file.
    prepare(view, {truth.isosbesticPath});
    child<QComboBox>(view, "cb_biosensorName")->setCurrentText(QStringLiteral("Biosensor"));
    setStages(view);
    child<QCheckBox>(view, "cb_decimation")->setChecked(false);
    child<QCheckBox>(view, "cb_removeSlope")->setChecked(true);
    child<QComboBox>(view, "cb_slopeMethod")->setCurrentText(QStringLiteral("Polynomial"));
    child<QSpinBox>(view, "sb_slopeOrder")->setValue(2);
    EXPECT_EQ(child<QComboBox>(view, "cb_previewSignal")->currentText(), truth.biosensorPath);
    EXPECT_EQ(child<QComboBox>(view, "cb_previewSignal")->toolTip(),
              QStringLiteral("Select name of biosensor signal for preview."));

    QSignalSpy drawn(&view, &PhotometryDeltaFView::previewFinished);
    ASSERT_TRUE(view.requestPreview());
    EXPECT_EQ(view.previewJob()->progressDialog()->windowTitle(), QStringLiteral("Preview Progress"));
    ASSERT_TRUE(drawn.wait(60000));
    EXPECT_TRUE(titles.isEmpty()) << messages.join(' ').toStdString();

    const PhotometryPreviewPlots* plots = view.previewPlots();
    const QString tooltip =
        QStringLiteral("The <i>top two plots</i> show isosbestic and biosensor signals, raw data, or "
                       "decimated and/or smoothed if "
                       "decimation and/or smoothing were selected.<br>The blue lines represent slopes ");
    EXPECT_EQ(plots->isosbesticPlot()->toolTip(), tooltip);
    EXPECT_EQ(plots->biosensorPlot()->toolTip(), tooltip);
    EXPECT_EQ(plots->isosbesticPlot()->graph(0)->name(), QStringLiteral("Isosbestic"));
    EXPECT_EQ(plots->biosensorPlot()->graph(0)->name(), QStringLiteral("Biosensor"));
    EXPECT_EQ(plots->biosensorPlot()->graph(1)->name(), QStringLiteral("Slope"));
    // 200000 samples are drawn as every 10th.
    EXPECT_EQ(plots->isosbesticPlot()->graph(0)->dataCount(), 20000);
    EXPECT_EQ(plots->isosbesticPlot()->graph(1)->dataCount(), 20000);
    // Dark like every other plot: the palette's darker grey, #302f2f, and light grey text.
    for (QCustomPlot* plot : {plots->isosbesticPlot(), plots->biosensorPlot(), plots->fitPlot()}) {
        EXPECT_EQ(PlotStyle::backgroundOf(plot).color(), QColor(QStringLiteral("#302f2f")));
        EXPECT_EQ(plot->toPixmap(60, 40).toImage().pixelColor(0, 0), QColor(QStringLiteral("#302f2f")));
        EXPECT_EQ(plot->legend->item(0)->textColor(), QColor(QStringLiteral("#cccccc")));
    }
    const QCustomPlot* fit = plots->fitPlot();
    EXPECT_EQ(fit->graph(0)->name(), QStringLiteral("Outliers"));
    EXPECT_EQ(fit->graph(1)->name(), QStringLiteral("Inliers"));
    EXPECT_EQ(fit->graph(2)->name(), QStringLiteral("Isosbestic (fitted)"));
    EXPECT_EQ(fit->graph(1)->pen().color(), QColor(QStringLiteral("#4e9ccf")));
    EXPECT_GT(fit->graph(1)->dataCount(), fit->graph(0)->dataCount());
    EXPECT_EQ(fit->graph(0)->dataCount() + fit->graph(1)->dataCount(), 20000);
    EXPECT_EQ(fit->graph(2)->dataCount(), 2);
    EXPECT_EQ(fit->yAxis->label(), QStringLiteral("Biosensor (z-score)"));

    // The inlier fraction is said, and the threshold proposed from standardised signals is 0.5.
    const QString inliers = child<QLabel>(view, "lb_inliers")->text();
    EXPECT_TRUE(inliers.startsWith(QStringLiteral("Inliers: "))) << inliers.toStdString();
    EXPECT_TRUE(inliers.contains(QStringLiteral("% of 200000 samples. Proposed threshold: 0.5")))
        << inliers.toStdString();
    auto* propose = child<QToolButton>(view, "tb_proposeThreshold");
    ASSERT_TRUE(propose->isEnabled());
    child<QDoubleSpinBox>(view, "dsb_residualThreshold")->setValue(3.0);
    propose->click();
    EXPECT_NEAR(child<QDoubleSpinBox>(view, "dsb_residualThreshold")->value(), 0.5, 1e-6);
}

TEST_F(PhotometryViewTest, DialogOpensWideWithReadablePlotsAndTheStagesOfTheLastRun)
{
    // The last run smoothed with a running average of 0.25 s and a threshold of 0.0003, on raw signals.
    OperationSettings::remember(QStringLiteral("Photometry deltaF/F"),
                                {{QStringLiteral("IsosbesticName"), QStringLiteral("Isosbestic")},
                                 {QStringLiteral("BiosensorName"), QStringLiteral("Biosensor")},
                                 {QStringLiteral("SmoothMethod"), QStringLiteral("Running Average")},
                                 {QStringLiteral("SmoothTimeFrame(sec)"), 0.25},
                                 {QStringLiteral("ResidualThreshold"), 0.0003}});
    auto* view = new PhotometryDeltaFView;
    prepare(*view, {truth.isosbesticPath, truth.biosensorPath});
    EXPECT_TRUE(child<QCheckBox>(*view, "cb_smooth")->isChecked());
    EXPECT_EQ(child<QComboBox>(*view, "cb_smoothMethod")->currentText(), QStringLiteral("Running Average"));
    EXPECT_DOUBLE_EQ(child<QDoubleSpinBox>(*view, "dsb_smoothTimeFrame")->value(), 0.25);
    EXPECT_FALSE(child<QCheckBox>(*view, "cb_standardize")->isChecked());
    EXPECT_FALSE(child<QCheckBox>(*view, "cb_decimation")->isChecked());
    EXPECT_DOUBLE_EQ(child<QDoubleSpinBox>(*view, "dsb_residualThreshold")->value(), 0.0003);

    auto* dialog = new OperationDialog(view);
    dialog->show();
    QCoreApplication::sendPostedEvents();
    dialog->layout()->activate();
    EXPECT_GE(dialog->width(), 1300);
    EXPECT_GE(dialog->height(), 880);
    for (const QCustomPlot* plot : {view->previewPlots()->isosbesticPlot(),
                                    view->previewPlots()->biosensorPlot(), view->previewPlots()->fitPlot()})
        EXPECT_GE(plot->height(), 160);

    // A picture of the dialog with its preview, for people to look at.
    QSignalSpy drawn(view, &PhotometryDeltaFView::previewFinished);
    ASSERT_TRUE(view->requestPreview());
    ASSERT_TRUE(drawn.wait(60000));
    QCoreApplication::processEvents(); // the plots redraw on the event loop
    EXPECT_TRUE(dialog->grab().save(QStringLiteral(ZARVI_TEST_BINARY_DIR "/photometry-dialog.png")));
    delete dialog;
}

TEST_F(PhotometryViewTest, OneTickedSignalOffersItsPartnerAndASingleSensorIsRefusedBeforeTheDialogOpens)
{
    SignalPipeline pipeline;
    QStringList said;
    pipeline.setMessagePresenter(
        [&](const QString& title, const QString& message) { said << title << message; });
    pipeline.setData(file, {truth.isosbesticPath});
    OperationDialog* dialog = pipeline.openOperation(QStringLiteral("Photometry deltaF/F"));
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(child<QComboBox>(*dialog->view(), "cb_isosbesticName")->currentText(),
              QStringLiteral("Isosbestic"));
    EXPECT_EQ(child<QComboBox>(*dialog->view(), "cb_biosensorName")->currentText(),
              QStringLiteral("Biosensor"));
    EXPECT_TRUE(said.isEmpty());
    delete dialog;

    // A recording of one sensor has nothing to pair: said at once, and no dialog opens.
    const QString single = dir.file(QStringLiteral("single.orvel"));
    Signal signal;
    for (int i = 0; i < 100; ++i) {
        signal.time.push_back(i * 0.01);
        signal.values.push_back(1.0);
    }
    const QString path =
        test::writeSignal(single, QStringLiteral("DataAcquisition/Rig/Signals/Series1/Green"), signal);
    pipeline.setData(single, {path});
    EXPECT_EQ(pipeline.openOperation(QStringLiteral("Photometry deltaF/F")), nullptr);
    ASSERT_EQ(said.size(), 2);
    EXPECT_EQ(said[0], QStringLiteral("Error Operation"));
    EXPECT_TRUE(
        said[1].startsWith(QStringLiteral("The operation is designed for fiber photometry recordings")));
}

TEST_F(PhotometryViewTest, PreviewAndRunNameWhatIsMissing)
{
    // One sensor named twice cannot make a photometry pair.
    PhotometryDeltaFView single;
    prepare(single, {truth.biosensorPath});
    child<QComboBox>(single, "cb_isosbesticName")->setCurrentText(QStringLiteral("Biosensor"));
    child<QComboBox>(single, "cb_biosensorName")->setCurrentText(QStringLiteral("Biosensor"));
    EXPECT_FALSE(single.requestPreview());
    EXPECT_FALSE(single.run());
    EXPECT_EQ(titles, (QStringList{QStringLiteral("Error Not Fiber Photometry"),
                                   QStringLiteral("Error Not Fiber Photometry")}));
    EXPECT_TRUE(messages.first().startsWith(
        QStringLiteral("The operation is designed for fiber photometry recordings")));

    // A biosensor whose isosbestic partner is not in the file.
    titles.clear();
    messages.clear();
    PhotometryDeltaFView unpaired;
    prepare(unpaired, {truth.biosensorPath});
    child<QComboBox>(unpaired, "cb_isosbesticName")->setCurrentText(QStringLiteral("Reference"));
    EXPECT_FALSE(unpaired.requestPreview());
    EXPECT_EQ(titles, QStringList{QStringLiteral("Error No Isosbestic Signal")});
    EXPECT_EQ(messages.value(0),
              QStringLiteral("For the selected signal %1, isosbestic signal was not found. Load all "
                             "data or select different signal.")
                  .arg(truth.biosensorPath));

    // The smoothing cut-off is checked against the decimated rate beside the field.
    PhotometryDeltaFView view;
    prepare(view, {truth.isosbesticPath, truth.biosensorPath});
    setStages(view);
    child<QSpinBox>(view, "sb_decimationFactor")->setValue(100);
    const auto* note = child<QLabel>(view, "lb_smoothFrequencyValidation");
    EXPECT_FALSE(note->isHidden());
    EXPECT_TRUE(
        note->text().startsWith(QStringLiteral("*The Cutoff Frequency of the Smooth Signals operation")));
}

} // namespace
} // namespace zarvi
