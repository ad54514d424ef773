#include "TestOperations.h"
#include "common/TempDir.h"

#include "datafile/DemoRecording.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"
#include "datafile/SignalDataset.h"
#include "definitions/FileDefinitions.h"
#include "framework/AbstractOperationView.h"
#include "framework/FileAccessLock.h"
#include "framework/OperationDialog.h"
#include "framework/OperationRegistry.h"
#include "framework/OperationRunner.h"
#include "signal/SignalPipeline.h"
#include "signal/operations/decimation/DecimationView.h"

#include <QApplication>
#include <QLabel>
#include <QProgressDialog>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>

#include <gtest/gtest.h>

using namespace zarvi;

namespace {

/// A view for the slow test operation whose parameters the test sets directly.
class ScaleView : public AbstractOperationView
{
public:
    explicit ScaleView(QVariantMap parameters)
        : AbstractOperationView(test::slowOperation), m_parameters(std::move(parameters))
    {
    }

protected:
    bool buildParameters(QVariantMap& parameters) override
    {
        parameters = m_parameters;
        return true;
    }

private:
    QVariantMap m_parameters;
};

struct Collected
{
    QStringList titles;
    QStringList messages;
};

class OperationViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        test::registerTestOperations();
        file = dir.file(QStringLiteral("view.orvel"));
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.create(file), 0);
        Signal signal;
        for (int i = 0; i < 20000; ++i) {
            signal.time.push_back(i * 0.001);
            signal.values.push_back(i);
        }
        QString error;
        ASSERT_TRUE(SignalDataset::write(writer, QStringLiteral("DataAcquisition/Rig/Signals/Series1/Green"),
                                         signal, {}, error));
        input = QStringLiteral("DataAcquisition/Rig/Signals/Series1/Green/Signal");
    }

    void prepare(AbstractOperationView& view, Collected& collected)
    {
        view.setMessagePresenter(
            [&collected](const QString& title, const QString& message, const QString&, int) {
                collected.titles << title;
                collected.messages << message;
            });
        view.setupProcess(file, {input});
    }

    bool outputExists()
    {
        HDF5Reader_V6 reader;
        reader.open(file);
        return reader.exists(reader.fileId(), QStringLiteral("DataProcessed"));
    }

    test::TempDir dir;
    QString file;
    QString input;
};

TEST_F(OperationViewTest, ProgressArrivesInOrderAndEndsAt100)
{
    ScaleView view({{QStringLiteral("Factor"), 2.0}, {QStringLiteral("PauseMs"), 1}});
    Collected collected;
    prepare(view, collected);
    std::vector<int> progress;
    QObject::connect(&view, &AbstractOperationView::sendProgress,
                     [&](int p, bool) { progress.push_back(p); });
    QSignalSpy finished(&view, &AbstractOperationView::sendProcessFinished);
    ASSERT_TRUE(view.run());
    EXPECT_TRUE(view.progressDialog()->isVisible());
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    ASSERT_FALSE(progress.empty());
    EXPECT_EQ(progress.back(), 100);
    EXPECT_FALSE(view.progressDialog()->isVisible());
    EXPECT_TRUE(finished.first().at(2).toStringList().isEmpty());
    EXPECT_TRUE(collected.titles.isEmpty());
}

TEST_F(OperationViewTest, AnErrorReachesTheErrorsListAndTheErrorBox)
{
    ScaleView view({{QStringLiteral("FailWith"), QStringLiteral("Input error: no light.")}});
    Collected collected;
    prepare(view, collected);
    QSignalSpy finished(&view, &AbstractOperationView::sendProcessFinished);
    ASSERT_TRUE(view.run());
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_EQ(finished.first().at(2).toStringList(), QStringList{QStringLiteral("Input error: no light.")});
    EXPECT_EQ(collected.titles, QStringList{QStringLiteral("Error Operation")});
    EXPECT_TRUE(collected.messages.first().contains(QStringLiteral("no light")));
    EXPECT_FALSE(outputExists());
}

TEST_F(OperationViewTest, CancelFromTheProgressDialogStopsTheRunWithoutOutputOrErrorBox)
{
    ScaleView view({{QStringLiteral("Factor"), 2.0}, {QStringLiteral("PauseMs"), 30}});
    Collected collected;
    prepare(view, collected);
    QSignalSpy finished(&view, &AbstractOperationView::sendProcessFinished);
    QObject::connect(&view, &AbstractOperationView::sendProgress, [&](int p, bool) {
        if (p >= 10)
            emit view.progressDialog()->canceled(); // what a click on its button does
    });
    ASSERT_TRUE(view.run());
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_FALSE(finished.first().at(2).toStringList().isEmpty());
    EXPECT_TRUE(collected.titles.isEmpty());
    EXPECT_FALSE(outputExists());
}

TEST_F(OperationViewTest, DestroyingAViewWhileItsWorkerRunsWaitsForTheWorker)
{
    auto view = std::make_unique<ScaleView>(
        QVariantMap{{QStringLiteral("Factor"), 2.0}, {QStringLiteral("PauseMs"), 20}});
    Collected collected;
    prepare(*view, collected);
    bool started = false;
    QObject::connect(view.get(), &AbstractOperationView::sendProgress, [&](int, bool) { started = true; });
    ASSERT_TRUE(view->run());
    while (!started)
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    view.reset();
    // The worker is gone: nobody holds the file, and nothing half-written stayed.
    EXPECT_TRUE(FileAccessLock::tryLock(file).owns_lock());
    EXPECT_FALSE(outputExists());
}

TEST_F(OperationViewTest, EnterInAFieldRunsNothingAndOnlyRunOrItsShortcutRuns)
{
    auto* view = new DecimationView;
    Collected collected;
    prepare(*view, collected);
    auto* dialog = new OperationDialog(view);
    dialog->show();
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
    QSpinBox* factor = view->factorBox();
    factor->setFocus();
    QTest::keyClicks(factor, "5");
    QTest::keyClick(factor, Qt::Key_Return);
    QTest::keyClick(factor, Qt::Key_Enter);
    EXPECT_FALSE(view->isRunning());

    QSignalSpy finished(view, &AbstractOperationView::sendProcessFinished);
    // The shortcut clicks Run as a button click would (a short press, then the run).
    QTest::keyClick(factor, Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_TRUE(outputExists());
    delete dialog;
}

TEST_F(OperationViewTest, AnOpenDialogShowsAndRunsOnWhatTheSelectorChoseLast)
{
    Signal red;
    for (int i = 0; i < 100; ++i) {
        red.time.push_back(i * 0.01);
        red.values.push_back(-i);
    }
    QString error;
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(file), 0);
        ASSERT_TRUE(SignalDataset::write(writer, QStringLiteral("DataAcquisition/Rig/Signals/Series1/Red"),
                                         red, {}, error));
    }
    const QString redInput = QStringLiteral("DataAcquisition/Rig/Signals/Series1/Red/Signal");

    SignalPipeline pipeline;
    // Each operation's button says what the operation does.
    const auto* button = pipeline.findChild<QPushButton*>(QStringLiteral("pb_Decimation"));
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->toolTip(),
              OperationRegistry::instance().find(QStringLiteral("Decimation"))->description);
    EXPECT_FALSE(button->toolTip().isEmpty());
    pipeline.setData(file, {input});
    OperationDialog* dialog = pipeline.openOperation(QStringLiteral("Decimation"));
    ASSERT_NE(dialog, nullptr);
    auto* view = static_cast<DecimationView*>(dialog->view());
    view->setMessagePresenter([](const QString&, const QString&, const QString&, int) {});
    const auto shown = [dialog] { return dialog->findChild<QLabel*>(QStringLiteral("lb_datasets"))->text(); };
    EXPECT_TRUE(shown().contains(input));

    // The user ticks another signal in the selector while the dialog stays open.
    pipeline.setData(file, {redInput});
    EXPECT_EQ(view->datapaths(), QStringList{redInput});
    EXPECT_TRUE(shown().contains(redInput));
    EXPECT_FALSE(shown().contains(input));

    view->factorBox()->setValue(10);
    QSignalSpy finished(view, &AbstractOperationView::sendProcessFinished);
    ASSERT_TRUE(view->run());
    ASSERT_TRUE(finished.wait(20000));
    const QStringList written = finished.first().at(1).toStringList();
    ASSERT_EQ(written.size(), 1);
    EXPECT_TRUE(written.first().contains(QStringLiteral("/Red/"))) << written.first().toStdString();
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    Signal decimated;
    ASSERT_TRUE(SignalDataset::read(reader, written.first(), decimated, error));
    // Every 10th of 0, -1, ..., -99.
    EXPECT_EQ(decimated.values, (std::vector<double>{0, -10, -20, -30, -40, -50, -60, -70, -80, -90}));
    // The dialog says what the run wrote.
    EXPECT_EQ(dialog->findChild<QLabel*>(QStringLiteral("lb_result"))->text(),
              QStringLiteral("Written: DecimatedSignals1: 1 signal"));
    delete dialog;
}

TEST_F(OperationViewTest, AViewOpensWithTheValuesItLastRanWithAndTheDefaultsTheFirstTime)
{
    test::TempDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    {
        DecimationView first;
        EXPECT_EQ(first.factorBox()->value(), 10); // the declared default
        Collected collected;
        prepare(first, collected);
        first.factorBox()->setValue(7);
        QSignalSpy finished(&first, &AbstractOperationView::sendProcessFinished);
        ASSERT_TRUE(first.run());
        ASSERT_TRUE(finished.wait(20000));
    }
    DecimationView second;
    EXPECT_EQ(second.factorBox()->value(), 7);
}

TEST(DecimationFromViewAndRunner, GiveIdenticalDatasets)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("demo.orvel"));
    DemoTruth truth;
    QString error;
    DemoSettings settings;
    settings.stackFrames = 5;
    settings.videoFrames = 5;
    ASSERT_TRUE(DemoRecording::write(file, settings, truth, error));

    DecimationView view;
    view.setMessagePresenter([](const QString&, const QString&, const QString&, int) {});
    view.setupProcess(file, {truth.biosensorPath});
    view.factorBox()->setValue(7);
    QSignalSpy finished(&view, &AbstractOperationView::sendProcessFinished);
    ASSERT_TRUE(view.run());
    ASSERT_TRUE(finished.wait(20000));
    const QStringList fromView = finished.first().at(1).toStringList();
    ASSERT_EQ(fromView.size(), 1);

    // The command line reads its parameters from JSON, where every number is a real.
    OperationRunner runner;
    const RunResult fromCli = runner.run({{FileDefinitions::Operations, QStringLiteral("Decimation")},
                                          {QStringLiteral("DecimationFactor"), 7.0}},
                                         file, {truth.biosensorPath});
    ASSERT_TRUE(fromCli.succeeded());
    ASSERT_EQ(fromCli.datapaths.size(), 1);
    EXPECT_NE(fromCli.datapaths.first(), fromView.first());

    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    Signal a, b;
    ASSERT_TRUE(SignalDataset::read(reader, fromView.first(), a, error));
    ASSERT_TRUE(SignalDataset::read(reader, fromCli.datapaths.first(), b, error));
    EXPECT_EQ(a.values, b.values);
    EXPECT_EQ(a.time, b.time);
    EXPECT_EQ(a.values.size(), (600000u + 6) / 7);
    const auto attributes = [&](const QString& path) {
        const hid_t dataset = reader.openDataset(reader.fileId(), path);
        QVariantMap map = reader.readAllAttributes(dataset);
        reader.closeDataset(dataset);
        return map;
    };
    const QVariantMap viewAttributes = attributes(fromView.first());
    EXPECT_EQ(viewAttributes, attributes(fromCli.datapaths.first()));
    EXPECT_EQ(viewAttributes.value(QStringLiteral("DecimationFactor")).typeId(), QMetaType::Int);
}

} // namespace
