#pragma once

#include "datafile/Feedback.h"
#include "framework/ParameterValues.h"
#include "signal/operations/KernelOutcome.h"
#include "signal/operations/photometry/RansacLineFit.h"
#include "signal/operations/slope/SlopeBaseline.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace zarvi {

/// The ΔF/F of one isosbestic/biosensor pair of a photometry recording: optional
/// discard, decimation, smoothing, slope removal and standardisation of both signals,
/// a robust non-negative line fit of the isosbestic onto the biosensor signal, then
/// (y - f) / f, or y - f when slope removal or standardisation ran. Shared by the
/// operation's process (on its worker thread) and its preview.
class PhotometryDeltaF
{
public:
    /// One field per parameter key; an empty method or an absent value skips its stage.
    struct Config
    {
        std::optional<double> discardStart; ///< seconds removed from the beginning
        std::optional<double> discardEnd;   ///< negative seconds counted from the end
        int decimationFactor = 0;           ///< 0: no decimation
        QString smoothMethod;
        double smoothTimeFrame = 0.0;
        double smoothFrequency = 0.0;
        SlopeBaseline::Config slope;
        QString standardizeMethod;
        double residualThreshold = 0.0;
        /// Keep the intermediate signals the preview draws; a plain run needs only ΔF/F.
        bool keepPreviewData = false;

        /// Reads the keys of the operation's parameter map.
        static Config fromParameters(const ParameterValues& parameters);
        /// True when a stage needs the signals' times (discard, decimation, slope
        /// removal); the others need only the sample rates.
        bool needsTime() const;
    };

    struct Signal
    {
        std::vector<double> values;
        /// May be left empty when the config does not need it; `rate` then gives the rate.
        std::vector<double> time;
        double rate = 0.0;
    };

    struct Result
    {
        std::vector<double> time;   ///< time of the biosensor samples kept (empty if left out)
        std::vector<double> deltaF; ///< a ratio or a difference, never a percentage
        /// The line fit: line, inlier count and iteration count (its inlier mask only
        /// with keepPreviewData).
        RansacLineFit::Result fit;

        // With keepPreviewData only:
        Signal isosbestic; ///< after discard, decimation and smoothing
        Signal biosensor;
        std::vector<double> isosbesticSlope; ///< empty without slope removal
        std::vector<double> biosensorSlope;
        std::vector<double> isosbesticForFit; ///< x of the fit: after slope removal and standardisation
        std::vector<double> biosensorForFit;  ///< y of the fit
        std::vector<double> fittedIsosbestic; ///< the line evaluated at every x

        KernelOutcome outcome;
    };

    /// True when the low-pass smoothing cannot run at the rate left after decimation; the
    /// stage is then skipped with a warning, and the view says so beside the field.
    static bool isSmoothingCutoffTooHigh(double cutoff, double decimatedRate)
    {
        return !(cutoff < decimatedRate / 2.0);
    }

    /// A stage skipped for a reason the user should see is reported through feedback->warn().
    static Result compute(const Config& config, Signal isosbestic, Signal biosensor, Feedback* feedback);
};

} // namespace zarvi
