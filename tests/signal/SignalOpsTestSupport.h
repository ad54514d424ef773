#pragma once

#include "datafile/DemoRecording.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"
#include "datafile/SignalDataset.h"

#include <QFile>
#include <QVariantMap>

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <vector>

namespace zarvi::test {

/// Writes `signal` into the sensor group `group` of a new or existing file; returns its values path.
inline QString writeSignal(const QString& file, const QString& group, const Signal& signal)
{
    HDF5Writer_V6 writer;
    const bool exists = QFile::exists(file);
    EXPECT_GE(exists ? writer.open(file) : writer.create(file), 0);
    QString error;
    EXPECT_TRUE(SignalDataset::write(writer, group, signal, {}, error)) << error.toStdString();
    return SignalDataset::valuesPath(group);
}

inline Signal readSignal(const QString& file, const QString& path)
{
    HDF5Reader_V6 reader;
    EXPECT_GE(reader.open(file), 0);
    Signal signal;
    QString error;
    EXPECT_TRUE(SignalDataset::read(reader, path, signal, error)) << error.toStdString();
    return signal;
}

/// Every attribute of the dataset or group at `path`.
inline QVariantMap attributesOf(const QString& file, const QString& path, bool group = false)
{
    HDF5Reader_V6 reader;
    EXPECT_GE(reader.open(file), 0);
    const hid_t id =
        group ? reader.openGroup(reader.fileId(), path) : reader.openDataset(reader.fileId(), path);
    EXPECT_GE(id, 0) << path.toStdString();
    const QVariantMap attributes = reader.readAllAttributes(id);
    if (group)
        reader.closeGroup(id);
    else
        reader.closeDataset(id);
    return attributes;
}

inline bool exists(const QString& file, const QString& path)
{
    HDF5Reader_V6 reader;
    EXPECT_GE(reader.open(file), 0);
    return reader.exists(reader.fileId(), path);
}

/// True when the file holds any operation output (or what was left of one: a rolled back
/// run removes its numbered group but not the category and series groups above it).
inline bool hasProcessedData(const QString& file)
{
    return exists(file, QStringLiteral("DataProcessed"));
}

/// A demo recording of `seconds` of photometry with a token stack and video, so it is quick to write.
inline DemoTruth writeSmallDemo(const QString& file, double seconds)
{
    DemoSettings settings;
    settings.photometryDuration = seconds;
    settings.stackHeight = settings.stackWidth = 32;
    settings.stackFrames = 4;
    settings.videoWidth = 64;
    settings.videoHeight = 48;
    settings.videoFrames = 4;
    DemoTruth truth;
    QString error;
    EXPECT_TRUE(DemoRecording::write(file, settings, truth, error)) << error.toStdString();
    return truth;
}

/// Mean of the samples with time in [from, to).
inline double meanBetween(const Signal& signal, double from, double to)
{
    double sum = 0.0;
    int count = 0;
    for (std::size_t i = 0; i < signal.time.size(); ++i) {
        if (signal.time[i] >= from && signal.time[i] < to) {
            sum += signal.values[i];
            ++count;
        }
    }
    return count > 0 ? sum / count : std::nan("");
}

} // namespace zarvi::test
