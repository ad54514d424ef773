#pragma once

#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"
#include "datafile/ImageFrameReader.h"
#include "datafile/ImageFrameWriter.h"
#include "definitions/FileDefinitions.h"
#include "framework/AbstractOperationProcess.h"
#include "framework/OperationRunner.h"

#include <QFile>
#include <QVariantMap>

#include <gtest/gtest.h>

#include <opencv2/core.hpp>

#include <vector>

namespace zarvi::test {

/// Where the test stacks go: a converted series, as the conversion writes it.
inline QString stackGroup(const QString& sensor = QStringLiteral("Cells"),
                          const QString& series = QStringLiteral("Series1"))
{
    return QStringLiteral("DataConverted/Scope/Images/%1/%2").arg(series, sensor);
}

/// Writes `frames` (CV_16UC1 or any depth, saturated into 16 bits) with times `times`
/// (0.1 s apart when empty) as a stack in a new or existing file; returns the stack's path.
inline QString writeStack(const QString& file, const std::vector<cv::Mat>& frames,
                          std::vector<double> times = {}, const QString& sensor = QStringLiteral("Cells"),
                          const QString& series = QStringLiteral("Series1"))
{
    if (times.empty())
        for (std::size_t k = 0; k < frames.size(); ++k)
            times.push_back(0.1 * static_cast<double>(k));
    HDF5Writer_V6 writer;
    EXPECT_GE(QFile::exists(file) ? writer.open(file) : writer.create(file), 0);
    const QString group = stackGroup(sensor, series);
    const hid_t id = writer.createGroupPath(writer.fileId(), group);
    ImageStackInfo geometry;
    geometry.height = frames.empty() ? 8 : frames.front().rows;
    geometry.width = frames.empty() ? 8 : frames.front().cols;
    geometry.username = sensor;
    ImageFrameWriter stack;
    QString error;
    EXPECT_TRUE(stack.create(writer, id, geometry, frames.size(), {}, error)) << error.toStdString();
    for (std::size_t k = 0; k < frames.size(); ++k)
        EXPECT_TRUE(stack.append(frames[k], times[k], error)) << error.toStdString();
    stack.close();
    writer.closeGroup(id);
    return group + QStringLiteral("/ImageStack");
}

/// Every frame of the stack at `path`, as stored (CV_16UC1), and its times.
inline std::vector<cv::Mat> readStack(const QString& file, const QString& path,
                                      std::vector<double>* times = nullptr)
{
    HDF5Reader_V6 reader;
    EXPECT_GE(reader.open(file), 0);
    ImageFrameReader stack;
    QString error;
    EXPECT_TRUE(stack.open(reader, path, error)) << error.toStdString();
    std::vector<cv::Mat> frames(stack.info().frames);
    for (std::size_t k = 0; k < frames.size(); ++k)
        EXPECT_TRUE(stack.readRawFrame(k, frames[k], error)) << error.toStdString();
    if (times)
        *times = stack.time();
    return frames;
}

/// True when the two images have the same size, type and values.
inline bool sameImage(const cv::Mat& a, const cv::Mat& b)
{
    return a.size() == b.size() && a.type() == b.type() && cv::countNonZero(a != b) == 0;
}

inline bool hasProcessedData(const QString& file)
{
    HDF5Reader_V6 reader;
    EXPECT_GE(reader.open(file), 0);
    return reader.exists(reader.fileId(), FileDefinitions::DataProcessed);
}

inline QVariantMap operationParameters(const QString& operation, const QVariantMap& parameters)
{
    QVariantMap map = parameters;
    map.insert(FileDefinitions::Operations, operation);
    return map;
}

/// Runs an image operation's process on this thread with `threads` frame threads, as the
/// runner would; results must not depend on the count.
template <typename Process>
RunResult runWithFrameThreads(const QVariantMap& parameters, const QString& file, const QStringList& inputs,
                              int threads)
{
    Process process;
    process.setFrameThreads(threads);
    RunResult result;
    QObject::connect(
        &process, &AbstractOperationProcess::sendProcessFinished,
        [&result](const QString& filepath, const QStringList& datapaths, const QStringList& errors) {
            result = {filepath, datapaths, errors};
        });
    QVariantMap map = parameters;
    map.insert(FileDefinitions::Filepath, file);
    map.insert(FileDefinitions::SourceDatapaths, inputs);
    process.onStartProcessRequested(map);
    return result;
}

} // namespace zarvi::test
