#include "SignalOpsTestSupport.h"
#include "common/TempDir.h"

#include "datafile/HDF5Writer_V6.h"
#include "definitions/FileDefinitions.h"
#include "framework/OperationRunner.h"
#include "signal/operations/filter/FilterDesign.h"
#include "signal/operations/filter/SignalSpectrum.h"
#include "signal/operations/filter/ZeroPhaseFilter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace zarvi {
namespace {

const QString inputGroup = QStringLiteral("DataAcquisition/Rig/Signals/Series1/Green");
const QString filteredPath =
    QStringLiteral("DataProcessed/Rig/Signals/Series1/FilteredSignals1/Green/Signal");

/// 500 Hz from t = 3 s: a slow wave, a 30 Hz wave and a 120 Hz wave on an offset.
Signal mixture(std::size_t n = 20000)
{
    Signal s;
    s.unit = QStringLiteral("mV");
    for (std::size_t i = 0; i < n; ++i) {
        const double t = 3.0 + static_cast<double>(i) / 500.0;
        s.time.push_back(t);
        s.values.push_back(1.5 + std::sin(2 * std::numbers::pi * 0.7 * t) +
                           0.5 * std::sin(2 * std::numbers::pi * 30 * t) +
                           0.3 * std::sin(2 * std::numbers::pi * 120 * t));
    }
    return s;
}

QVariantMap filterParameters(const QString& type, const QVariantMap& cutoffs)
{
    QVariantMap parameters = cutoffs;
    parameters.insert(FileDefinitions::Operations, QStringLiteral("Filter"));
    parameters.insert(QStringLiteral("FilterType"), type);
    parameters.insert(QStringLiteral("FilterName"), QStringLiteral("Butterworth"));
    return parameters;
}

class SignalOperationTest : public ::testing::Test
{
protected:
    test::TempDir dir;
    QString file = dir.file(QStringLiteral("signals.orvel"));
    OperationRunner runner;
};

TEST_F(SignalOperationTest, FilterWritesTheZeroPhaseFilteredInputWithTypedParameters)
{
    const Signal input = mixture();
    const QString path = test::writeSignal(file, inputGroup, input);
    // Numbers arrive as JSON reals, as from the command line.
    const RunResult result = runner.run(
        filterParameters(QStringLiteral("BandPass"), {{QStringLiteral("LowCutoffFrequency"), 10.0},
                                                      {QStringLiteral("HighCutoffFrequency"), 60.0}}),
        file, {path});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    ASSERT_EQ(result.datapaths, QStringList{filteredPath});

    // The same design at the rate the time vector was written with, applied to the same samples.
    const std::vector<double> cutoffs{10.0, 60.0};
    FilterDesign::Result design = FilterDesign::design(QStringLiteral("BandPass"), cutoffs, 500.0);
    ASSERT_TRUE(design.outcome.ok());
    std::vector<double> expected = input.values;
    ASSERT_TRUE(ZeroPhaseFilter::apply(design.filter, expected, nullptr).ok());

    const Signal output = test::readSignal(file, filteredPath);
    EXPECT_EQ(output.time, input.time);
    EXPECT_EQ(output.unit, QStringLiteral("mV"));
    ASSERT_EQ(output.values.size(), expected.size());
    double largest = 0.0;
    for (std::size_t i = 0; i < expected.size(); ++i)
        largest = std::max(largest, std::fabs(output.values[i] - expected[i]));
    EXPECT_LT(largest, 1e-9);
    // Only the 30 Hz wave is in the band: away from the ends the output is that wave.
    EXPECT_NEAR(output.values[10000], 0.5 * std::sin(2 * std::numbers::pi * 30 * input.time[10000]), 0.02);

    const QVariantMap attributes = test::attributesOf(file, filteredPath);
    EXPECT_EQ(attributes.value(QStringLiteral("Operations")), QVariant(QStringLiteral("Filter")));
    EXPECT_EQ(attributes.value(QStringLiteral("FilterType")).typeId(), QMetaType::QString);
    EXPECT_EQ(attributes.value(QStringLiteral("FilterType")).toString(), QStringLiteral("BandPass"));
    EXPECT_EQ(attributes.value(QStringLiteral("LowCutoffFrequency")).typeId(), QMetaType::Double);
    EXPECT_EQ(attributes.value(QStringLiteral("LowCutoffFrequency")).toDouble(), 10.0);
    EXPECT_EQ(attributes.value(QStringLiteral("HighCutoffFrequency")).typeId(), QMetaType::Double);
    EXPECT_EQ(attributes.value(QStringLiteral("FilterName")).toString(), QStringLiteral("Butterworth"));
    EXPECT_EQ(attributes.value(QStringLiteral("SourceDatapath")).toString(), path);
    const QVariantMap group =
        test::attributesOf(file, QStringLiteral("DataProcessed/Rig/Signals/Series1/FilteredSignals1"), true);
    EXPECT_EQ(group.value(QStringLiteral("SourceDatapaths")).toStringList(), QStringList{path});
    EXPECT_EQ(group.value(QStringLiteral("LowCutoffFrequency")).typeId(), QMetaType::Double);

    // A low-pass filter with its one cut-off keeps the slow wave and drops the rest.
    const RunResult lowPass =
        runner.run(filterParameters(QStringLiteral("LowPass"), {{QStringLiteral("LowCutoffFrequency"), 5.0}}),
                   file, {path});
    ASSERT_TRUE(lowPass.succeeded()) << lowPass.errors.join(' ').toStdString();
    const Signal smooth = test::readSignal(file, lowPass.datapaths.first());
    EXPECT_NEAR(smooth.values[10000], 1.5 + std::sin(2 * std::numbers::pi * 0.7 * input.time[10000]), 0.01);
}

TEST_F(SignalOperationTest, FilterAndSmoothKeepTheInputTimeSampleForSample)
{
    // Uneven intervals whose mean gives 500 Hz: 2000 samples from 3 s to 3 + 1999 / 500 s,
    // every inner sample moved by up to a third of an interval.
    Signal input = mixture(2000);
    for (std::size_t i = 1; i + 1 < input.time.size(); ++i)
        input.time[i] += (i % 3 == 0 ? 1.0 : -0.5) / 1500.0;
    const QString path = test::writeSignal(file, inputGroup, input);

    const RunResult filtered = runner.run(
        filterParameters(QStringLiteral("LowPass"), {{QStringLiteral("LowCutoffFrequency"), 50.0}}), file,
        {path});
    ASSERT_TRUE(filtered.succeeded()) << filtered.errors.join(' ').toStdString();
    QVariantMap smoothParameters{{FileDefinitions::Operations, QStringLiteral("Smooth Signals")},
                                 {QStringLiteral("SmoothMethod"), QStringLiteral("Running Average")},
                                 {QStringLiteral("SmoothTimeFrame(sec)"), 0.01}};
    const RunResult smoothed = runner.run(smoothParameters, file, {path});
    ASSERT_TRUE(smoothed.succeeded()) << smoothed.errors.join(' ').toStdString();

    // The filter's rate is (n - 1) / (last - first) = 500 Hz whatever lies between the ends.
    FilterDesign::Result design =
        FilterDesign::design(QStringLiteral("LowPass"), std::vector<double>{50.0}, 500.0);
    std::vector<double> expected = input.values;
    ASSERT_TRUE(ZeroPhaseFilter::apply(design.filter, expected, nullptr).ok());
    const Signal output = test::readSignal(file, filtered.datapaths.first());
    EXPECT_EQ(output.time, input.time);
    ASSERT_EQ(output.values.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); i += 97)
        EXPECT_NEAR(output.values[i], expected[i], 1e-9) << i;

    for (const QString& values : {filtered.datapaths.first(), smoothed.datapaths.first()}) {
        const QString time = values.left(values.lastIndexOf(QLatin1Char('/'))) + QStringLiteral("/Time");
        EXPECT_EQ(test::readSignal(file, values).time, input.time) << values.toStdString();
        EXPECT_EQ(test::attributesOf(file, time).value(QStringLiteral("Unit")).toString(),
                  QStringLiteral("s"));
    }

    // The outputs' Time is the input's own dataset under more names, and outlives it.
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(file), 0);
        for (const QString& values : {path, filtered.datapaths.first(), smoothed.datapaths.first()}) {
            const QString time = values.left(values.lastIndexOf(QLatin1Char('/'))) + QStringLiteral("/Time");
            H5O_info_t info;
            ASSERT_GE(H5Oget_info_by_name2(writer.fileId(), time.toUtf8().constData(), &info, H5O_INFO_BASIC,
                                           H5P_DEFAULT),
                      0);
            EXPECT_EQ(info.rc, 3u) << time.toStdString();
        }
        ASSERT_TRUE(writer.deleteLink(writer.fileId(), inputGroup));
        writer.closeFile();
    }
    for (const QString& values : {filtered.datapaths.first(), smoothed.datapaths.first()})
        EXPECT_EQ(test::readSignal(file, values).time, input.time) << values.toStdString();
}

TEST_F(SignalOperationTest, FilterRefusesInconsistentCutoffsAndWritesNothing)
{
    const QString path = test::writeSignal(file, inputGroup, mixture(2000));
    const QString wrong = QStringLiteral("Wrong low-high filter frequencies.");
    RunResult result = runner.run(
        filterParameters(QStringLiteral("BandPass"), {{QStringLiteral("LowCutoffFrequency"), 60.0},
                                                      {QStringLiteral("HighCutoffFrequency"), 10.0}}),
        file, {path});
    EXPECT_EQ(result.errors, QStringList{wrong});
    // 300 Hz is above half the 500 Hz rate of the signal's time vector.
    result = runner.run(
        filterParameters(QStringLiteral("HighPass"), {{QStringLiteral("LowCutoffFrequency"), 300.0}}), file,
        {path});
    EXPECT_EQ(result.errors, QStringList{wrong});
    result = runner.run(filterParameters(QStringLiteral("LowPass"), {}), file, {path});
    EXPECT_EQ(result.errors, QStringList{wrong});

    QVariantMap bessel =
        filterParameters(QStringLiteral("LowPass"), {{QStringLiteral("LowCutoffFrequency"), 5.0}});
    bessel.insert(QStringLiteral("FilterName"), QStringLiteral("Bessel"));
    result = runner.run(bessel, file, {path});
    ASSERT_EQ(result.errors.size(), 1);
    EXPECT_TRUE(result.errors.first().contains(QStringLiteral("<b>Bessel</b>")));
    EXPECT_FALSE(test::hasProcessedData(file));
}

TEST_F(SignalOperationTest, SmoothingAveragesWithMirroredEndsOrLeavesTheSignalForAnUnknownMethod)
{
    // 8 Hz exactly, so 0.5 s is a window of W = 4 samples.
    Signal input;
    input.unit = QStringLiteral("V");
    const std::vector<double> x{3, 1, 4, 1, 5, 9, 2, 6, 5, 3, 5, 8, 9, 7, 9, 3};
    for (std::size_t i = 0; i < x.size(); ++i) {
        input.time.push_back(static_cast<double>(i) / 8.0);
        input.values.push_back(x[i]);
    }
    const QString path = test::writeSignal(file, inputGroup, input);
    const QVariantMap average{{FileDefinitions::Operations, QStringLiteral("Smooth Signals")},
                              {QStringLiteral("SmoothMethod"), QStringLiteral("Running Average")},
                              {QStringLiteral("SmoothTimeFrame(sec)"), 0.5}};
    const RunResult result = runner.run(average, file, {path});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    EXPECT_EQ(result.datapaths,
              QStringList{QStringLiteral("DataProcessed/Rig/Signals/Series1/SmoothedSignals1/Green/Signal")});
    const Signal smoothed = test::readSignal(file, result.datapaths.first());
    // h = 2: indices -2..2 read x2 x1 x0 x1 x2, five samples over W = 4.
    EXPECT_DOUBLE_EQ(smoothed.values[0], (4.0 + 1.0 + 3.0 + 1.0 + 4.0) / 4.0);
    EXPECT_DOUBLE_EQ(smoothed.values[1], (1.0 + 3.0 + 1.0 + 4.0 + 1.0) / 4.0);
    EXPECT_DOUBLE_EQ(smoothed.values[4], (4.0 + 1.0 + 5.0 + 9.0 + 2.0) / 4.0);
    // The last index mirrors about the end: 15 + 1 and 15 + 2 read 14 and 13.
    EXPECT_DOUBLE_EQ(smoothed.values[15], (9.0 + 7.0 + 3.0 + 7.0 + 9.0) / 4.0);
    EXPECT_EQ(smoothed.time, input.time);
    EXPECT_EQ(test::attributesOf(file, result.datapaths.first())
                  .value(QStringLiteral("SmoothTimeFrame(sec)"))
                  .typeId(),
              QMetaType::Double);

    QVariantMap unknown = average;
    unknown.insert(QStringLiteral("SmoothMethod"), QStringLiteral("Gaussian"));
    const RunResult unchanged = runner.run(unknown, file, {path});
    ASSERT_TRUE(unchanged.succeeded());
    EXPECT_EQ(test::readSignal(file, unchanged.datapaths.first()).values, x);

    // Too short a window is refused and leaves no output behind.
    QVariantMap tooShort = average;
    tooShort.insert(QStringLiteral("SmoothTimeFrame(sec)"), 0.1);
    EXPECT_FALSE(runner.run(tooShort, file, {path}).succeeded());
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    EXPECT_FALSE(
        reader.exists(reader.fileId(), QStringLiteral("DataProcessed/Rig/Signals/Series1/SmoothedSignals3")));
}

TEST_F(SignalOperationTest, LowPassSmoothingKeepsAConstantSignalAtBothEnds)
{
    // 20 s, so the start's constant extension (a tenth of the signal) outlasts the filter's ringing.
    Signal input;
    for (int i = 0; i < 20000; ++i) {
        input.time.push_back(i / 1000.0);
        input.values.push_back(2.5);
    }
    const QString path = test::writeSignal(file, inputGroup, input);
    const RunResult result =
        runner.run({{FileDefinitions::Operations, QStringLiteral("Smooth Signals")},
                    {QStringLiteral("SmoothMethod"), QStringLiteral("Low-pass Butterworth Filter")},
                    {QStringLiteral("SmoothFrequency(Hz)"), 20.0}},
                   file, {path});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    const Signal smoothed = test::readSignal(file, result.datapaths.first());
    for (const std::size_t i : {std::size_t{0}, std::size_t{10000}, std::size_t{19999}})
        EXPECT_NEAR(smoothed.values[i], 2.5, 1e-9);
}

TEST_F(SignalOperationTest, DecimationRefusesAFactorLargerThanTheSignalAndWritesNothing)
{
    const QString path = test::writeSignal(file, inputGroup, mixture(300));
    const RunResult result = runner.run({{FileDefinitions::Operations, QStringLiteral("Decimation")},
                                         {QStringLiteral("DecimationFactor"), 1000.0}},
                                        file, {path});
    EXPECT_EQ(result.errors, QStringList{QStringLiteral("Bad value for decimation factor.")});
    EXPECT_FALSE(test::hasProcessedData(file));
}

TEST(SignalSpectrum, PeaksAtTheBinOfASinusoidWithItsAmplitude)
{
    // 2^16 samples at 1 kHz: bin k is k * 1000 / 65536 Hz; put a sinusoid of amplitude 0.25
    // exactly on bin 3277 (about 50 Hz) and a mean of 2.
    const std::size_t n = std::size_t{1} << 16;
    const double rate = 1000.0;
    std::vector<double> values(n + 5000);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = 2.0 + 0.25 * std::cos(2 * std::numbers::pi * 3277.0 * static_cast<double>(i) / n);
    const SignalSpectrum::Result spectrum = SignalSpectrum::compute(values, rate);
    ASSERT_TRUE(spectrum.outcome.ok());
    ASSERT_EQ(spectrum.frequencies.size(), n / 2 + 1);
    EXPECT_DOUBLE_EQ(spectrum.frequencies[3277], 3277.0 * rate / n);
    EXPECT_DOUBLE_EQ(spectrum.frequencies.back(), rate / 2.0);
    const auto peak = std::max_element(spectrum.magnitudesDb.begin() + 1, spectrum.magnitudesDb.end());
    EXPECT_EQ(peak - spectrum.magnitudesDb.begin(), 3277);
    EXPECT_NEAR(*peak, 20.0 * std::log10(0.25), 1e-9);
    EXPECT_NEAR(spectrum.magnitudesDb[0], 20.0 * std::log10(2.0), 1e-9);
    // Bins without content sit at the floor, never minus infinity.
    EXPECT_NEAR(spectrum.magnitudesDb[100], 20.0 * std::log10(static_cast<double>(1e-5f)), 1e-9);

    // A short signal uses a length the DFT factors well, not more samples than it has.
    const SignalSpectrum::Result shortOne = SignalSpectrum::compute(std::span(values).first(1009), rate);
    ASSERT_TRUE(shortOne.outcome.ok());
    EXPECT_LE(shortOne.frequencies.size(), 1009u / 2 + 1);
    EXPECT_FALSE(SignalSpectrum::compute(std::span(values).first(1), rate).outcome.ok());
}

} // namespace
} // namespace zarvi
