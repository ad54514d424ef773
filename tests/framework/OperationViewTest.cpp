#include "TestOperations.h"
#include "common/TempDir.h"

#include "datafile/DemoRecording.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"
#include "datafile/SignalDataset.h"
#include "definitions/FileDefinitions.h"
#include "framework/AbstractOperationView.h"
#include "framework/FileAccessLock.h"
#include "framework/OperationRunner.h"
#include "signal/operations/decimation/DecimationView.h"

#include <QApplication>
#include <QProgressDialog>
#include <QSignalSpy>
#include <QSpinBox>

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
