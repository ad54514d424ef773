#pragma once

#include <QString>

#include <vector>

namespace zarvi {

class Feedback;

/// What the demo recording holds, so that tests and benchmarks know the truth.
struct DemoTruth
{
    // Photometry.
    QString isosbesticPath;
    QString biosensorPath;
    QString eventPath; ///< group holding the event array
    QString eventName; ///< event array dataset name
    double photometryRate = 0.0;
    double photometryDuration = 0.0;
    std::vector<double> eventOnsets;
    std::vector<double> eventOffsets;
    double transientPeakLatency = 0.0; ///< seconds from event onset to the transient's peak
    double transientAmplitude = 0.0;   ///< relative rise of the biosensor at the peak
    std::vector<double> artefactTimes; ///< centres of the motion artefacts common to both channels

    // Miniscope stack.
    QString imageStackPath;
    int stackHeight = 0;
    int stackWidth = 0;
    int stackFrames = 0;
    double stackFrameRate = 0.0;
    std::vector<double> shiftX; ///< true translation of frame k against the scene, pixels
    std::vector<double> shiftY;

    // Behaviour video.
    QString videoGroupPath;
    QString videoFilePath;
    double videoFrameRate = 0.0;
    int videoFrames = 0;
    std::vector<double> animalX; ///< true centre of the animal in frame k, pixels
    std::vector<double> animalY;
};

/// Settings of the synthetic recording; the defaults are the documented demo.
struct DemoSettings
{
    unsigned seed = 1;
    double photometryRate = 1000.0;
    double photometryDuration = 600.0;
    int stackHeight = 256;
    int stackWidth = 256;
    int stackFrames = 500;
    double stackFrameRate = 20.0;
    int videoWidth = 320;
    int videoHeight = 240;
    int videoFrames = 200;
    double videoFrameRate = 20.0;
};

/// Writes a realistic, seeded synthetic recording: a photometry pair with
/// bleaching, a shared motion artefact and event-locked transients; its event
/// array; a drifting miniscope stack with flashing cells; and a behaviour video
/// written beside the data file and linked from it. Runs on the calling thread.
class DemoRecording
{
public:
    /// False with `error` set when the file or the video cannot be written.
    static bool write(const QString& path, const DemoSettings& settings, DemoTruth& truth, QString& error,
                      Feedback* feedback = nullptr);
};

} // namespace zarvi
