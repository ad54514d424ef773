#include "common/TempDir.h"

#include "datafile/HDF5Reader_V6.h"
#include "datafile/HDF5Writer_V6.h"
#include "datafile/SignalDataset.h"
#include "definitions/FileDefinitions.h"
#include "framework/OperationRunner.h"

#include <gtest/gtest.h>

using namespace zarvi;

TEST(InvertOperation, MirrorsAboutTheOffset)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("invert.orvel"));
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.create(file), 0);
        QString error;
        ASSERT_TRUE(SignalDataset::write(writer, QStringLiteral("DataAcquisition/Rig/Signals/Series1/Green"),
                                         Signal{{0.0, 0.1, 0.2}, {1.0, 2.0, 4.0}, QStringLiteral("V")}, {},
                                         error));
    }
    OperationRunner runner;
    const RunResult result = runner.run(
        {{FileDefinitions::Operations, QStringLiteral("Invert")}, {QStringLiteral("InvertOffset"), 1.5}},
        file, {QStringLiteral("DataAcquisition/Rig/Signals/Series1/Green/Signal")});
    ASSERT_TRUE(result.succeeded()) << result.errors.join(' ').toStdString();
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    Signal inverted;
    QString error;
    ASSERT_TRUE(SignalDataset::read(reader, result.datapaths.value(0), inverted, error));
    EXPECT_EQ(inverted.values, (std::vector<double>{2.0, 1.0, -1.0}));
}
