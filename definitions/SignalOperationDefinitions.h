#pragma once

#include <QCoreApplication>
#include <QString>

namespace zarvi {

/// Holds the names, parameter keys, method names, labels and messages of the signal
/// operations. Keys and method names are never translated; labels and messages go
/// through tr. Constants only, safe from any thread.
class SignalOperationDefinitions
{
    Q_DECLARE_TR_FUNCTIONS(SignalOperationDefinitions)

public:
    // Output names.
    static inline const QString AlignedSignals = QStringLiteral("AlignedSignals");
    static inline const QString ArithmeticSignals = QStringLiteral("ArithmeticSignals");
    static inline const QString ArtifactCorrectedSignals = QStringLiteral("ArtifactCorrectedSignals");
    static inline const QString LEDArtifactCorrectedSignals = QStringLiteral("LEDArtifactCorrectedSignals");
    static inline const QString SlopeCorrectedSignals = QStringLiteral("SlopeCorrectedSignals");
    static inline const QString DecimatedSignals = QStringLiteral("DecimatedSignals");
    static inline const QString DFFSignals = QStringLiteral("DFFSignals");
    static inline const QString FilteredSignals = QStringLiteral("FilteredSignals");
    static inline const QString InterpolatedSignals = QStringLiteral("InterpolatedSignals");
    static inline const QString LifetimeSignals = QStringLiteral("LifetimeSignals");
    static inline const QString SmoothedSignals = QStringLiteral("SmoothedSignals");
    static inline const QString SplitSignals = QStringLiteral("SplitSignals");
    static inline const QString StandardizedSignals = QStringLiteral("StandardizedSignals");
    static inline const QString ROISignalsOutput = QStringLiteral("ROISignals");

    // Operation names (the value of "Operations").
    static inline const QString Filter = QStringLiteral("Filter");
    static inline const QString SmoothSignals = QStringLiteral("Smooth Signals");
    static inline const QString Decimation = QStringLiteral("Decimation");
    static inline const QString PhotometryDeltaF = QStringLiteral("Photometry deltaF/F");

    // Filter parameter keys.
    static inline const QString FilterType = QStringLiteral("FilterType");
    static inline const QString LowCutoffFrequency = QStringLiteral("LowCutoffFrequency");
    static inline const QString HighCutoffFrequency = QStringLiteral("HighCutoffFrequency");
    static inline const QString FilterName = QStringLiteral("FilterName");

    // Filter types and families.
    static inline const QString LowPass = QStringLiteral("LowPass");
    static inline const QString HighPass = QStringLiteral("HighPass");
    static inline const QString BandPass = QStringLiteral("BandPass");
    static inline const QString BandStop = QStringLiteral("BandStop");
    static inline const QString Butterworth = QStringLiteral("Butterworth");
    static inline const QString Bessel = QStringLiteral("Bessel");
    static inline const QString ChebyshevI = QStringLiteral("ChebyshevI");
    static inline const QString ChebyshevII = QStringLiteral("ChebyshevII");

    // Smoothing and decimation parameter keys.
    static inline const QString SmoothMethod = QStringLiteral("SmoothMethod");
    static inline const QString SmoothTimeFrame = QStringLiteral("SmoothTimeFrame(sec)");
    static inline const QString SmoothFrequency = QStringLiteral("SmoothFrequency(Hz)");
    static inline const QString DecimationFactor = QStringLiteral("DecimationFactor");

    // ΔF/F parameter keys.
    static inline const QString IsosbesticName = QStringLiteral("IsosbesticName");
    static inline const QString BiosensorName = QStringLiteral("BiosensorName");
    static inline const QString DiscardStart = QStringLiteral("DiscardStart(sec)");
    static inline const QString DiscardEnd = QStringLiteral("DiscardEnd(sec)");
    static inline const QString RemoveSlopeMethod = QStringLiteral("RemoveSlopeMethod");
    static inline const QString SlopeLambda = QStringLiteral("SlopeLambda");
    static inline const QString SlopeRatio = QStringLiteral("SlopeRatio");
    static inline const QString SlopeTimeWindow = QStringLiteral("SlopeTimeWindow(sec)");
    static inline const QString SlopeOrder = QStringLiteral("SlopeOrder");
    static inline const QString StandardizeMethod = QStringLiteral("StandardizeMethod");
    static inline const QString ResidualThreshold = QStringLiteral("ResidualThreshold");
    /// Attribute of a ΔF/F output: the share of samples (0 to 1) the line fit kept as inliers.
    static inline const QString InlierFraction = QStringLiteral("InlierFraction");

    // Method names. "Running Average" names both a smoothing and a slope method.
    static inline const QString RunningAverage = QStringLiteral("Running Average");
    static inline const QString LowPassButterworthFilter = QStringLiteral("Low-pass Butterworth Filter");
    static inline const QString Arpls = QStringLiteral("arPLS");
    static inline const QString Polynomial = QStringLiteral("Polynomial");
    static inline const QString StandardZScore = QStringLiteral("Standard Z Score");
    static inline const QString ModifiedZScore = QStringLiteral("Modified Z Score");

    // Units of the ΔF/F output: a ratio has none of its own, a standardised difference is in z-scores.
    static inline const QString RatioUnit = QStringLiteral("a.u.");
    static inline const QString ZScoreUnit = QStringLiteral("z-score");

    // Progress labels.
    static QString applyingFilterLabel() { return tr("Applying filter..."); }
    static QString calculatingFilterResponseLabel() { return tr("Calculating filter response..."); }
    static QString calculatingSpectrumLabel() { return tr("Calculating the signal's spectrum..."); }
    static QString decimatingSignalLabel() { return tr("Decimating signal..."); }
    static QString discardingBeginningLabel() { return tr("Discarding the beginning of the signals..."); }
    static QString discardingEndLabel() { return tr("Discarding the end of the signals..."); }
    static QString smoothingSignalsLabel() { return tr("Smoothing signals..."); }
    static QString removingSlopeLabel() { return tr("Removing slope..."); }
    static QString fittingSignalsLabel() { return tr("Fitting signals..."); }
    static QString calculatingFittedIsosbesticLabel()
    {
        return tr("Calculating fitted isosbestic signal...");
    }
    static QString calculatingRegressionLineLabel() { return tr("Calculating regression line..."); }

    // Plot axes, curves and series.
    static QString frequencyAxisLabel() { return tr("Frequency (Hz)"); }
    static QString amplitudeAxisLabel() { return tr("Amplitude (dB)"); }
    static QString signalFftLabel() { return tr("Signal FFT"); }
    static QString filterResponseLabel() { return tr("Filter Respone"); }
    static QString filteredSignalLabel() { return tr("Filtered Signal"); }
    static QString smoothedSignalLabel() { return tr("Smoothed Signal"); }
    static QString decimatedSignalLabel() { return tr("Decimated Signal"); }
    static QString isosbesticLabel() { return tr("Isosbestic"); }
    static QString biosensorLabel() { return tr("Biosensor"); }
    static QString biosensorZScoreLabel() { return tr("Biosensor (z-score)"); }
    static QString isosbesticFittedLabel() { return tr("Isosbestic (fitted)"); }
    static QString slopeLabel() { return tr("Slope"); }
    static QString inliersLabel() { return tr("Inliers"); }
    static QString outliersLabel() { return tr("Outliers"); }
    static QString timeAxisLabel() { return tr("Time (s)"); }

    // Field and button labels of the views.
    static QString filterTypeLabel() { return tr("Filter type"); }
    static QString lowCutoffLabel() { return tr("Low cutoff frequency (Hz)"); }
    static QString highCutoffLabel() { return tr("High cutoff frequency (Hz)"); }
    static QString smoothMethodLabel() { return tr("Smoothing method"); }
    static QString smoothTimeFrameLabel() { return tr("Time frame (sec)"); }
    static QString smoothFrequencyLabel() { return tr("Cutoff frequency (Hz)"); }
    static QString isosbesticNameLabel() { return tr("Isosbestic sensor"); }
    static QString biosensorNameLabel() { return tr("Biosensor sensor"); }
    static QString discardStartLabel() { return tr("Discard start (sec)"); }
    static QString discardEndLabel() { return tr("Discard end (sec)"); }
    static QString decimationLabel() { return tr("Decimation factor"); }
    static QString smoothingLabel() { return tr("Smoothing"); }
    static QString removeSlopeLabel() { return tr("Remove slope"); }
    static QString slopeLambdaLabel() { return tr("Lambda"); }
    static QString slopeRatioLabel() { return tr("Ratio"); }
    static QString slopeTimeWindowLabel() { return tr("Time window (sec)"); }
    static QString slopeOrderLabel() { return tr("Order"); }
    static QString standardizeLabel() { return tr("Standardize"); }
    static QString residualThresholdLabel() { return tr("Residual threshold"); }
    static QString previewSignalLabel() { return tr("Preview signal"); }
    static QString previewButtonText() { return tr("Preview"); }

    // What each operation does, for its button and the command-line help.
    static QString filterDescription()
    {
        return tr("Order-10 Butterworth low-pass, high-pass, band-pass or band-stop filter, applied forward "
                  "and backward so that it shifts no phase.");
    }
    static QString smoothDescription()
    {
        return tr("Smooths each signal with a running average over a time frame or a zero-phase low-pass "
                  "Butterworth filter.");
    }
    static QString decimationDescription()
    {
        return tr("Keeps every M-th sample of each signal and of its time, without anti-alias filtering.");
    }
    static QString photometryDeltaFDescription()
    {
        return tr(
            "ΔF/F of fiber-photometry recordings: fits the isosbestic signal onto the biosensor signal "
            "of the same recording with a robust line and gives (biosensor - fit) / fit, after optional "
            "discard, decimation, smoothing, slope removal and standardisation.");
    }

    // Tooltips.
    static QString filterTypeTooltip()
    {
        return tr("LowPass and HighPass use the low cutoff frequency; BandPass and BandStop span the low to "
                  "the high cutoff frequency.");
    }
    static QString lowCutoffTooltip()
    {
        return tr("Cutoff frequency of a low- or high-pass filter, or the lower "
                  "edge of a band; below half the sample rate.");
    }
    static QString highCutoffTooltip()
    {
        return tr("Upper edge of a band filter; below half the sample rate.");
    }
    static QString filterNameLabel() { return tr("Filter family"); }
    static QString filterNameTooltip() { return tr("Butterworth is the filter family that is built."); }
    static QString smoothMethodTooltip()
    {
        return tr(
            "Running Average: centred mean over the time frame. Low-pass Butterworth Filter: zero-phase "
            "low-pass at the cutoff frequency.");
    }
    static QString smoothTimeFrameTooltip()
    {
        return tr("Length of the running-average window in seconds; at least one sample.");
    }
    static QString smoothFrequencyTooltip()
    {
        return tr("Cutoff frequency of the low-pass filter; below half the sample rate.");
    }
    static QString removeSlopeTooltip()
    {
        return tr("Baseline removed from both signals before the fit: arPLS, a running average or a "
                  "polynomial.");
    }
    static QString slopeLambdaTooltip()
    {
        return tr("Smoothness of the arPLS baseline; larger is smoother.");
    }
    static QString slopeRatioTooltip() { return tr("Convergence ratio of arPLS, between 0 and 1."); }
    static QString slopeTimeWindowTooltip()
    {
        return tr("Window of the running-average baseline in seconds.");
    }
    static QString residualThresholdTooltip()
    {
        return tr("A sample is an inlier of the line fit when its residual is below this threshold. The "
                  "residual is not normalised, so the right value depends on the scale of the signals.");
    }
    static QString proposeThresholdText() { return tr("Propose"); }
    static QString proposeThresholdTooltip()
    {
        return tr("Sets the threshold to half the product of the standard deviations of the two signals as "
                  "they enter the fit (after the stages above), computed on the previewed pair. Standardised "
                  "signals get 0.5; raw signals get a value on their own scale.");
    }
    /// %1 percent of the samples that are inliers, %2 number of samples, %3 proposed threshold.
    static QString inlierFractionText() { return tr("Inliers: %1 % of %2 samples. Proposed threshold: %3"); }
    /// %1 the threshold used.
    static QString noInlierWarning()
    {
        return tr(
            "Warning: no sample is an inlier of the line fit (0 %): the residual threshold <b>%1</b> is "
            "too small for the scale of these signals.");
    }
    static QString allInliersWarning()
    {
        return tr("Warning: every sample is an inlier of the line fit (100 %): the residual threshold "
                  "<b>%1</b> is too large for the scale of these signals, and the line is merely the last "
                  "pair of samples drawn.");
    }
    static QString decimationFactorTooltip()
    {
        return tr("Decimation factor is the integer factor (M) by which the sampling rate is reduced. For "
                  "example, if the decimation factor is M, the operation keeps only M<sup>th</sup> sample.");
    }
    static QString isosbesticNameTooltip()
    {
        return tr("Select the sensor used for recording isosbestic fluorescence signals.");
    }
    static QString biosensorNameTooltip()
    {
        return tr("Select the sensor used for recording biosensor fluorescence signals.");
    }
    static QString discardStartTooltip()
    {
        return tr("Set time frame that is removed from the beginning of the signals.");
    }
    static QString discardEndTooltip()
    {
        return tr("Set time frame (negative value) that is removed from the end of the signals.");
    }
    static QString slopeOrderTooltip()
    {
        return tr("Parameter for polynomial fit. It indicates the highest power of the variable in the "
                  "polynomial equation.");
    }
    static QString standardizeTooltip()
    {
        return tr("If checked, signals are standirdized before fitting. Strongly recommended.");
    }
    static QString previewSignalTooltip() { return tr("Select name of biosensor signal for preview."); }
    static QString previewPlotsTooltip()
    {
        return tr("The <i>top two plots</i> show isosbestic and biosensor signals, raw data, or decimated "
                  "and/or smoothed if decimation and/or smoothing were selected.<br>The blue lines "
                  "represent slopes ");
    }

    // Validation and failure messages.
    static QString lowAboveNyquistMessage()
    {
        return tr("*Low value must be less than half of the sample rate.");
    }
    static QString highAboveNyquistMessage()
    {
        return tr("*High value must be less than half of the sample rate.");
    }
    static QString lowNotBelowHighMessage() { return tr("*Low value must be lower than high value."); }
    static QString wrongFilterFrequenciesMessage() { return tr("Wrong low-high filter frequencies."); }
    static QString smoothingCutoffTooHighMessage()
    {
        return tr(
            "*The Cutoff Frequency of the %1 operation must be less than half of the sample rate of the "
            "decimated signals. Otherwise, %1 operation won't be executed.");
    }
    static QString cutoffAboveNyquistMessage()
    {
        return tr("*Cutoff value must be less than half of the sample rate.");
    }
    static QString timeFrameBelowOneSampleMessage()
    {
        return tr("*Time frame must be at least one sample long.");
    }
    static QString badDecimationFactorMessage() { return tr("Bad value for decimation factor."); }
    static QString parameterMissingMessage() { return tr("Parameter <b>%1</b> is missing."); }
    static QString matchingSignalsNotFoundMessage()
    {
        return tr("Matching signals from sensors <b>%1</b> and <b>%2</b> were not found in the file.");
    }
    static QString notFiberPhotometryTitle() { return tr("Error Not Fiber Photometry"); }
    static QString notFiberPhotometryMessage()
    {
        return tr("The operation is designed for fiber photometry recordings that contain 2 channels "
                  "(isosbestic and biosensor signals). Load a different file or make sure to load all "
                  "signals from file.");
    }
    static QString noIsosbesticSignalTitle() { return tr("Error No Isosbestic Signal"); }
    static QString noIsosbesticSignalMessage()
    {
        return tr("For the selected signal %1, isosbestic signal was not found. Load all data or select "
                  "different signal.");
    }

    static QString fileBusyMessage() { return tr("The file <b>%1</b> is in use by a running operation."); }
    static QString unknownFilterNameMessage()
    {
        return tr("Error: the filter <b>%1</b> is not available; only Butterworth filters are built.");
    }

    // Messages of the kernels themselves.
    static QString unknownFilterTypeMessage() { return tr("Error: unknown filter type <b>%1</b>."); }
    static QString windowTooLongMessage()
    {
        return tr(
            "Error: the averaging window (<b>%1</b> samples) is longer than the signal (<b>%2</b> samples).");
    }
    static QString windowTooShortMessage()
    {
        return tr("Error: the averaging window is shorter than one sample.");
    }
    static QString lineFitTooFewSamplesMessage()
    {
        return tr("Error: the line fit needs at least two samples of each signal.");
    }
    static QString lineFitConstantSignalMessage()
    {
        return tr("Error: the line fit cannot use a constant isosbestic or biosensor signal.");
    }
    static QString lineFitNoPairMessage()
    {
        return tr("Error: no pair of samples gives a line with a non-negative slope; the signals cannot be "
                  "fitted.");
    }
    static QString badArplsParametersMessage()
    {
        return tr("Error: arPLS needs a positive smoothness (lambda) and a positive convergence ratio.");
    }
    static QString valuesTimeMismatchMessage()
    {
        return tr("Error: the values and the time vector of a signal have different lengths.");
    }
    static QString unknownSlopeMethodMessage() { return tr("Error: unknown slope method <b>%1</b>."); }
    static QString slopeOrderTooHighMessage()
    {
        return tr("Error: the polynomial order <b>%1</b> is above the highest order offered, <b>%2</b>.");
    }
    static QString badSlopeOrderMessage()
    {
        return tr("Error: the polynomial order <b>%1</b> needs more samples than the signal holds.");
    }
    static QString unknownStandardizeMethodMessage()
    {
        return tr("Error: unknown standardization method <b>%1</b>.");
    }
    static QString constantSignalStandardizeMessage()
    {
        return tr("Error: a signal without spread cannot be standardized.");
    }
    static QString signalLengthMismatchMessage()
    {
        return tr("Error: the isosbestic signal has <b>%1</b> samples and the biosensor signal <b>%2</b>; "
                  "they must have the same length.");
    }
    static QString outputSizeMismatchMessage()
    {
        return tr("Error: the output buffer does not have the length of the signal.");
    }
    static QString emptySignalMessage() { return tr("Error: a signal has no samples left to process."); }
};

} // namespace zarvi
