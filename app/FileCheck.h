#pragma once

#include "datafile/FileClassifier.h"

#include <QString>

namespace zarvi {

/// Classifies a file in a child process (`zarvi-cli check FILE`) before the application
/// reads it itself: a damaged file can crash or hang the HDF5 library, and in a child that
/// costs the child, not every open tab. A child that crashes or runs past the time limit
/// gives an unrecognized file with the damage message. Without the check program the
/// file is classified in this process. GUI thread: it waits for the child in a local
/// event loop that keeps the windows painted and holds back user input.
class FileCheck
{
public:
    /// How long a check may take before the file is taken for damaged.
    static constexpr int TimeoutMilliseconds = 30000;

    /// `program` is the check program; empty classifies in this process.
    explicit FileCheck(QString program = programBesideApplication(),
                       int timeoutMilliseconds = TimeoutMilliseconds);

    /// zarvi-cli in the application's folder, or in ../cli as the build tree lays them
    /// out; empty when neither exists.
    static QString programBesideApplication();

    FileClassification classify(const QString& path) const;

private:
    QString m_program;
    int m_timeoutMilliseconds;
};

} // namespace zarvi
