#pragma once

#include "common/TempDir.h"

#include "datafile/DemoRecording.h"
#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"
#include "definitions/AnalysisOperationDefinitions.h"
#include "definitions/FileDefinitions.h"

#include <QFile>
#include <QVariantMap>

#include <gtest/gtest.h>

#include <vector>

namespace zarvi::test {

/// A small demo recording (five minutes of photometry, a tiny stack and video),
/// written once per test program and copied for each test.
class PerieventDemo
{
public:
    static const PerieventDemo& instance()
    {
        static const PerieventDemo demo;
        return demo;
    }

    /// A fresh copy of the recording in `dir`.
    QString copyTo(const TempDir& dir) const
    {
        const QString path = dir.file(QStringLiteral("demo.orvel"));
        EXPECT_TRUE(QFile::copy(m_path, path));
        return path;
    }

    DemoTruth truth;

private:
    PerieventDemo()
    {
        DemoSettings settings;
        settings.photometryDuration = 300.0;
        settings.stackHeight = settings.stackWidth = 16;
        settings.stackFrames = 4;
        settings.videoWidth = 32;
        settings.videoHeight = 24;
        settings.videoFrames = 4;
        m_path = m_dir.file(QStringLiteral("demo.orvel"));
        QString error;
        EXPECT_TRUE(DemoRecording::write(m_path, settings, truth, error)) << error.toStdString();
    }

    TempDir m_dir;
    QString m_path;
};

/// The parameters of a perievent run on the demo's stimulus: window [-2, 4], frames
/// "Baseline" [-2, 0] and "Response" [0, 1], statistics "Mean" and "Maximum".
inline QVariantMap demoParameters(const DemoTruth& truth)
{
    using D = AnalysisOperationDefinitions;
    return {{FileDefinitions::Operations, D::Perievents},
            {D::EventPath, truth.eventPath},
            {D::Event, truth.eventName},
            {D::PerieventTimeFrame, QVariantList{-2.0, 4.0}},
            {D::StatisticTimeFrames, QVariantList{-2.0, 0.0, 0.0, 1.0}},
            {D::TimeFramesNames, QStringList{QStringLiteral("Baseline"), QStringLiteral("Response")}},
            {D::Statistics, QStringList{D::Mean, D::Maximum}}};
}

/// Adds an event array (onsets only, or rows of onset and offset) to a data file.
inline void writeEventArray(const QString& file, const QString& group, const QString& name,
                            const std::vector<double>& rows, int columns)
{
    HDF5Writer_V6 writer;
    ASSERT_GE(writer.open(file), 0);
    const hid_t location = writer.createGroupPath(writer.fileId(), group);
    const hsize_t count = rows.size() / static_cast<hsize_t>(columns);
    const hsize_t width = static_cast<hsize_t>(columns);
    const hid_t dataset =
        writer.createDataset(location, ElementKind::Float64, name, 2, {H5S_UNLIMITED, width},
                             {std::max<hsize_t>(count, 1), width}, {count, width}, 0);
    ASSERT_GE(dataset, 0);
    ASSERT_TRUE(writer.write(dataset, rows.data(), {0, 0}, {count, width}));
    writer.closeDataset(dataset);
    writer.closeGroup(location);
}

/// A whole dataset of a data file as doubles, with its dimensions and attributes.
struct RawDataset
{
    std::vector<double> values;
    std::vector<hsize_t> dimensions;
    std::vector<hsize_t> chunk;
    QVariantMap attributes;
};

inline RawDataset readRaw(const QString& file, const QString& path)
{
    RawDataset raw;
    HDF5Reader_V6 reader;
    EXPECT_GE(reader.open(file), 0);
    const hid_t dataset = reader.openDataset(reader.fileId(), path);
    EXPECT_GE(dataset, 0) << path.toStdString();
    if (dataset < 0)
        return raw;
    raw.dimensions = reader.dimensions(dataset);
    raw.chunk = reader.chunkDimensions(dataset);
    EXPECT_TRUE(reader.read(dataset, raw.values));
    raw.attributes = reader.readAllAttributes(dataset);
    reader.closeDataset(dataset);
    return raw;
}

inline bool pathExists(const QString& file, const QString& path)
{
    HDF5Reader_V6 reader;
    EXPECT_GE(reader.open(file), 0);
    return reader.exists(reader.fileId(), path);
}

} // namespace zarvi::test
