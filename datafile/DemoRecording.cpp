#include "datafile/DemoRecording.h"

#include "datafile/Feedback.h"
#include "datafile/HDF5Writer_V6.h"
#include "datafile/ImageFrameWriter.h"
#include "datafile/SignalDataset.h"
#include "datafile/VideoCodecs.h"
#include "definitions/FileDefinitions.h"

#include <QDir>
#include <QFileInfo>

#include <opencv2/imgproc.hpp>

#include <cmath>
#include <numbers>
#include <random>

namespace zarvi {

namespace {

using FD = FileDefinitions;

QString join(std::initializer_list<QString> parts)
{
    return QStringList(parts).join(QLatin1Char('/'));
}

// Rise and decay of the event-locked transient, seconds, and the delay before it starts.
constexpr double transientRise = 0.1;
constexpr double transientDecay = 0.8;
constexpr double transientDelay = 0.2;

double transientPeakTime()
{
    return std::log(transientDecay / transientRise) * transientRise * transientDecay /
           (transientDecay - transientRise);
}

double transientShape(double tau)
{
    static const double peak =
        std::exp(-transientPeakTime() / transientDecay) - std::exp(-transientPeakTime() / transientRise);
    if (tau < 0.0)
        return 0.0;
    return (std::exp(-tau / transientDecay) - std::exp(-tau / transientRise)) / peak;
}

bool writePhotometry(HDF5Writer_V6& file, const DemoSettings& s, std::mt19937& rng, DemoTruth& truth,
                     QString& error)
{
    const auto n = static_cast<std::size_t>(s.photometryRate * s.photometryDuration);
    truth.photometryRate = s.photometryRate;
    truth.photometryDuration = s.photometryDuration;
    truth.transientAmplitude = 0.10;
    truth.transientPeakLatency = transientDelay + transientPeakTime();

    std::uniform_real_distribution<double> jitter(-3.0, 3.0);
    for (double t = 20.0 + jitter(rng); t < s.photometryDuration - 20.0; t += 20.0 + jitter(rng)) {
        truth.eventOnsets.push_back(t);
        truth.eventOffsets.push_back(t + 2.0);
    }
    std::uniform_real_distribution<double> artefactAt(60.0, s.photometryDuration - 60.0);
    for (int k = 0; k < 3; ++k)
        truth.artefactTimes.push_back(artefactAt(rng));

    Signal iso, bio;
    iso.unit = bio.unit = QStringLiteral("V");
    iso.time.resize(n);
    iso.values.resize(n);
    bio.values.resize(n);
    std::vector<double> transient(n, 0.0);
    const std::size_t transientSamples = static_cast<std::size_t>(8.0 * s.photometryRate);
    for (double onset : truth.eventOnsets) {
        const auto first = static_cast<std::size_t>(std::ceil(onset * s.photometryRate));
        for (std::size_t k = first; k < std::min(n, first + transientSamples); ++k)
            transient[k] +=
                truth.transientAmplitude *
                transientShape(static_cast<double>(k) / s.photometryRate - onset - transientDelay);
    }
    std::normal_distribution<double> noise(0.0, 0.003);
    for (std::size_t k = 0; k < n; ++k) {
        const double t = static_cast<double>(k) / s.photometryRate;
        double artefact = 1.0;
        for (double a : truth.artefactTimes)
            artefact -= 0.08 * std::exp(-0.5 * ((t - a) / 0.8) * ((t - a) / 0.8));
        iso.time[k] = t;
        iso.values[k] = 1.2 * (0.6 + 0.4 * std::exp(-t / 180.0)) * artefact + noise(rng);
        bio.values[k] =
            2.0 * (0.5 + 0.5 * std::exp(-t / 150.0)) * artefact * (1.0 + transient[k]) + noise(rng);
    }
    bio.time = iso.time;

    const QString series =
        join({FD::DataAcquisition, QStringLiteral("FiberPhotometry"), FD::Signals, FD::SeriesPattern.arg(1)});
    const QString isoGroup = series + QStringLiteral("/Isosbestic");
    const QString bioGroup = series + QStringLiteral("/Biosensor");
    if (!SignalDataset::write(file, isoGroup, iso, {{FD::Username, QStringLiteral("Isosbestic")}}, error) ||
        !SignalDataset::write(file, bioGroup, bio, {{FD::Username, QStringLiteral("Biosensor")}}, error))
        return false;
    truth.isosbesticPath = SignalDataset::valuesPath(isoGroup);
    truth.biosensorPath = SignalDataset::valuesPath(bioGroup);

    // Event array: one row per event, onset then offset, seconds.
    truth.eventPath =
        join({FD::DataAcquisition, QStringLiteral("FiberPhotometry"), FD::Events, FD::SeriesPattern.arg(1)});
    truth.eventName = QStringLiteral("Stimulus");
    const hid_t group = file.createGroupPath(file.fileId(), truth.eventPath);
    const hsize_t events = truth.eventOnsets.size();
    const hid_t dataset =
        file.createDataset(group, ElementKind::Float64, truth.eventName, 2, {H5S_UNLIMITED, 2},
                           {std::max<hsize_t>(events, 1), 2}, {events, 2}, 0);
    std::vector<double> rows;
    for (std::size_t k = 0; k < events; ++k) {
        rows.push_back(truth.eventOnsets[k]);
        rows.push_back(truth.eventOffsets[k]);
    }
    const bool ok = dataset >= 0 && file.write(dataset, rows.data(), {0, 0}, {events, 2}) &&
                    file.writeAttribute(dataset, FD::Unit, QStringLiteral("s"));
    if (!ok)
        error = FD::unableToCreateDatasetMessage().arg(truth.eventPath + QLatin1Char('/') + truth.eventName);
    file.closeDataset(dataset);
    file.closeGroup(group);
    return ok;
}

bool writeImageStack(HDF5Writer_V6& file, const DemoSettings& s, std::mt19937& rng, DemoTruth& truth,
                     QString& error, Feedback* feedback)
{
    const int h = s.stackHeight, w = s.stackWidth, frames = s.stackFrames;
    truth.stackHeight = h;
    truth.stackWidth = w;
    truth.stackFrames = frames;
    truth.stackFrameRate = s.stackFrameRate;

    // Static scene: vignetted background; cells are Gaussian blobs with calcium activity.
    cv::Mat background(h, w, CV_32F);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const double r2 = (std::pow(x - w / 2.0, 2) + std::pow(y - h / 2.0, 2)) / (0.25 * w * w);
            background.at<float>(y, x) = static_cast<float>(600.0 + 400.0 * std::exp(-r2));
        }
    constexpr int cells = 40;
    std::uniform_real_distribution<double> position(20.0, std::min(h, w) - 20.0);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    std::vector<cv::Mat> footprints;
    std::vector<std::vector<double>> activity(cells, std::vector<double>(frames, 0.0));
    const double decay = std::exp(-1.0 / (0.5 * s.stackFrameRate));
    for (int c = 0; c < cells; ++c) {
        cv::Mat blob = cv::Mat::zeros(h, w, CV_32F);
        const double cx = position(rng), cy = position(rng);
        for (int y = std::max(0, int(cy) - 10); y < std::min(h, int(cy) + 11); ++y)
            for (int x = std::max(0, int(cx) - 10); x < std::min(w, int(cx) + 11); ++x)
                blob.at<float>(y, x) =
                    static_cast<float>(std::exp(-0.5 * (std::pow(x - cx, 2) + std::pow(y - cy, 2)) / 9.0));
        footprints.push_back(blob);
        double level = 0.0;
        for (int k = 0; k < frames; ++k) {
            level *= decay;
            if (unit(rng) < 0.3 / s.stackFrameRate)
                level += 1.0;
            activity[c][k] = 700.0 * level;
        }
    }

    const QString group = join({FD::DataAcquisition, QStringLiteral("Miniscope"), FD::Images,
                                FD::SeriesPattern.arg(1), FD::SensorPattern.arg(1)});
    const hid_t sensor = file.createGroupPath(file.fileId(), group);
    ImageStackInfo geometry;
    geometry.height = h;
    geometry.width = w;
    geometry.bitCount = 12;
    geometry.username = QStringLiteral("Miniscope");
    ImageFrameWriter stack;
    bool ok =
        sensor >= 0 && stack.create(file, sensor, geometry, static_cast<std::size_t>(frames), {}, error);

    std::uniform_real_distribution<double> jitter(-1.0, 1.0);
    std::normal_distribution<float> noise(0.0f, 15.0f);
    cv::Mat scene(h, w, CV_32F), moved(h, w, CV_32F), frame16(h, w, CV_16U);
    ProgressTracker progress(feedback, static_cast<std::size_t>(frames));
    for (int k = 0; ok && k < frames; ++k) {
        const double drift = static_cast<double>(k) / std::max(1, frames - 1);
        const double dx = 4.0 * drift + jitter(rng), dy = -3.0 * drift + jitter(rng);
        truth.shiftX.push_back(dx);
        truth.shiftY.push_back(dy);
        background.copyTo(scene);
        for (int c = 0; c < cells; ++c)
            if (activity[c][k] > 1.0)
                cv::scaleAdd(footprints[c], activity[c][k], scene, scene);
        // Frame content at p is the scene at p - shift.
        const cv::Mat warp = (cv::Mat_<double>(2, 3) << 1, 0, dx, 0, 1, dy);
        cv::warpAffine(scene, moved, warp, scene.size(), cv::INTER_LINEAR, cv::BORDER_REFLECT);
        for (int y = 0; y < h; ++y) {
            float* row = moved.ptr<float>(y);
            for (int x = 0; x < w; ++x)
                row[x] += noise(rng);
        }
        moved.convertTo(frame16, CV_16U); // saturates to 0..65535
        cv::min(frame16, 4095, frame16);
        ok = stack.append(frame16, k / s.stackFrameRate, error);
        progress.update(static_cast<std::size_t>(k + 1));
    }
    if (!ok)
        error = FD::unableToCreateDatasetMessage().arg(group + QLatin1Char('/') + FD::ImageStack) +
                QLatin1Char(' ') + error;
    truth.imageStackPath = group + QLatin1Char('/') + FD::ImageStack;
    stack.close();
    file.closeGroup(sensor);
    return ok;
}

bool writeVideo(HDF5Writer_V6& file, const QString& dataFilePath, const DemoSettings& s, DemoTruth& truth,
                QString& error)
{
    const QFileInfo info(dataFilePath);
    truth.videoFilePath =
        info.absoluteDir().filePath(info.completeBaseName() + QStringLiteral("_behavior.avi"));
    truth.videoFrameRate = s.videoFrameRate;
    truth.videoFrames = s.videoFrames;
    const VideoCodecs* codecs = VideoCodecs::load(error);
    if (!codecs)
        return false;
    const std::unique_ptr<VideoEncoder> writer = codecs->makeEncoder();
    if (!writer->open(QFile::encodeName(truth.videoFilePath).toStdString(), s.videoFrameRate, s.videoWidth,
                      s.videoHeight)) {
        error = QStringLiteral("Unable to write the demo video <b>%1</b>.").arg(truth.videoFilePath);
        return false;
    }
    const cv::Point2d centre(s.videoWidth / 2.0, s.videoHeight / 2.0);
    const double radius = 0.45 * std::min(s.videoWidth, s.videoHeight);
    cv::Mat frame(s.videoHeight, s.videoWidth, CV_8UC3);
    for (int k = 0; k < s.videoFrames; ++k) {
        const double t = k / s.videoFrameRate;
        const double x = centre.x + 0.55 * radius * std::sin(2.0 * std::numbers::pi * t / 7.0);
        const double y = centre.y + 0.45 * radius * std::sin(2.0 * std::numbers::pi * t / 5.0 + 0.5);
        const double vx = std::cos(2.0 * std::numbers::pi * t / 7.0) / 7.0;
        const double vy = 0.8 * std::cos(2.0 * std::numbers::pi * t / 5.0 + 0.5) / 5.0;
        truth.animalX.push_back(x);
        truth.animalY.push_back(y);
        frame.setTo(cv::Scalar::all(70));
        cv::circle(frame, centre, static_cast<int>(radius), cv::Scalar::all(215), cv::FILLED, cv::LINE_AA);
        cv::ellipse(frame, cv::Point(cvRound(x), cvRound(y)), cv::Size(14, 8),
                    std::atan2(vy, vx) * 180.0 / std::numbers::pi, 0, 360, cv::Scalar::all(30), cv::FILLED,
                    cv::LINE_AA);
        writer->write(frame);
    }
    writer->release();

    truth.videoGroupPath = join({FD::DataConverted, QStringLiteral("BehaviorCamera"), FD::Video,
                                 FD::SeriesPattern.arg(1), FD::VideoPattern.arg(1)});
    const hid_t group = file.createGroupPath(file.fileId(), truth.videoGroupPath);
    const hid_t time =
        file.create1D(group, ElementKind::Float64, FD::Time, static_cast<hsize_t>(s.videoFrames));
    std::vector<double> times(static_cast<std::size_t>(s.videoFrames));
    for (std::size_t k = 0; k < times.size(); ++k)
        times[k] = static_cast<double>(k) / s.videoFrameRate;
    const bool ok = group >= 0 && time >= 0 && file.append(time, times.data(), {times.size()}) &&
                    file.writeAttribute(group, FD::Filepath, truth.videoFilePath) &&
                    file.writeAttribute(group, FD::Filename, QFileInfo(truth.videoFilePath).fileName()) &&
                    file.writeAttribute(group, FD::RelativeFilePath,
                                        info.absoluteDir().relativeFilePath(truth.videoFilePath)) &&
                    file.writeAttribute(group, FD::FrameRate, s.videoFrameRate);
    if (!ok)
        error = FD::unableToCreateGroupMessage().arg(truth.videoGroupPath);
    file.closeDataset(time);
    file.closeGroup(group);
    return ok;
}

} // namespace

bool DemoRecording::write(const QString& path, const DemoSettings& settings, DemoTruth& truth, QString& error,
                          Feedback* feedback)
{
    truth = DemoTruth{};
    HDF5Writer_V6 file;
    if (file.create(path) < 0) {
        error = file.lastError();
        return false;
    }
    std::mt19937 rng(settings.seed);
    if (feedback)
        feedback->setLabel(QStringLiteral("Writing photometry signals..."));
    if (!writePhotometry(file, settings, rng, truth, error))
        return false;
    if (feedback)
        feedback->setLabel(QStringLiteral("Writing miniscope stack..."));
    if (!writeImageStack(file, settings, rng, truth, error, feedback))
        return false;
    if (feedback)
        feedback->setLabel(QStringLiteral("Writing behaviour video..."));
    return writeVideo(file, path, settings, truth, error);
}

} // namespace zarvi
