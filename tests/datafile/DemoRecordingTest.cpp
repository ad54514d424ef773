#include "common/TempDir.h"

#include "datafile/DataFileTree.h"
#include "datafile/DemoRecording.h"
#include "datafile/FileClassifier.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/SignalDataset.h"

#include <QProcess>

#include <opencv2/videoio.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace zarvi;

TEST(DemoRecording, HoldsEveryPartWithTheDocumentedTruth)
{
    test::TempDir dir;
    const QString path = dir.file(QStringLiteral("demo.orvel"));
    DemoTruth truth;
    QString error;
    ASSERT_TRUE(DemoRecording::write(path, DemoSettings{}, truth, error)) << error.toStdString();
    EXPECT_EQ(FileClassifier::classify(path).kind, FileKind::Data);

    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(path), 0);
    Signal iso, bio;
    ASSERT_TRUE(SignalDataset::read(reader, truth.isosbesticPath, iso, error));
    ASSERT_TRUE(SignalDataset::read(reader, truth.biosensorPath, bio, error));
    ASSERT_EQ(iso.values.size(), 600000u);
    EXPECT_EQ(iso.time, bio.time);
    EXPECT_DOUBLE_EQ(iso.time[1000], 1.0);

    // The biosensor rises at the documented latency after an event, by about the documented amount.
    const double onset = truth.eventOnsets[3];
    const auto at = [&](double t) { return static_cast<std::size_t>(std::lround(t * truth.photometryRate)); };
    double before = 0.0, peak = 0.0;
    for (std::size_t k = at(onset - 1.0); k < at(onset); ++k)
        before += bio.values[k] / 1000.0;
    for (std::size_t k = at(onset + truth.transientPeakLatency) - 50;
         k < at(onset + truth.transientPeakLatency) + 50; ++k)
        peak += bio.values[k] / 100.0;
    EXPECT_NEAR(peak / before - 1.0, truth.transientAmplitude, 0.02);

    // Event array: one row per event, onset and offset.
    const hid_t events = reader.openDataset(reader.fileId(), truth.eventPath + '/' + truth.eventName);
    ASSERT_GE(events, 0);
    std::vector<double> rows;
    ASSERT_TRUE(reader.read(events, rows));
    EXPECT_EQ(reader.dimensions(events), (std::vector<hsize_t>{truth.eventOnsets.size(), 2}));
    EXPECT_EQ(rows[0], truth.eventOnsets[0]);
    EXPECT_EQ(rows[1], truth.eventOffsets[0]);
    reader.closeDataset(events);
    EXPECT_GE(truth.eventOnsets.size(), 20u);

    // Image stack: uint16, height x width x frames, one chunk per frame.
    const hid_t stack = reader.openDataset(reader.fileId(), truth.imageStackPath);
    ASSERT_GE(stack, 0);
    EXPECT_EQ(reader.dimensions(stack), (std::vector<hsize_t>{256, 256, 500}));
    EXPECT_EQ(reader.chunkDimensions(stack), (std::vector<hsize_t>{256, 256, 1}));
    EXPECT_EQ(reader.readAttribute(stack, QStringLiteral("Format")).toInt(), 28);
    std::vector<std::uint16_t> frame;
    ASSERT_TRUE(reader.read(stack, {0, 0, 499}, {256, 256, 1}, frame));
    EXPECT_GT(*std::max_element(frame.begin(), frame.end()), 500);
    reader.closeDataset(stack);
    EXPECT_EQ(truth.shiftX.size(), 500u);

    // The linked video exists, has every frame, and the animal is dark where the truth says.
    cv::VideoCapture video(truth.videoFilePath.toStdString());
    ASSERT_TRUE(video.isOpened());
    EXPECT_EQ(static_cast<int>(video.get(cv::CAP_PROP_FRAME_COUNT)), truth.videoFrames);
    cv::Mat image;
    ASSERT_TRUE(video.read(image));
    const cv::Vec3b animal = image.at<cv::Vec3b>(cvRound(truth.animalY[0]), cvRound(truth.animalX[0]));
    EXPECT_LT(animal[0], 80);
    const hid_t link = reader.openGroup(reader.fileId(), truth.videoGroupPath);
    EXPECT_EQ(reader.readAttribute(link, QStringLiteral("RelativeFilePath")).toString(),
              QStringLiteral("demo_behavior.avi"));
    reader.closeGroup(link);
}
