#pragma once

#include <QString>
#include <QStringList>

#include <vector>

#include "fileeditor/ConversionTarget.h"

namespace zarvi {

/// A recording of an acquisition system to bring into a data file.
struct RecordingConversionConfig
{
    /// A .ppd file, a Neurophotometrics .csv, or a TDT block (its folder, .tsq or .tev).
    QString sourcePath;
    ConversionDestination destination;
    /// TDT stores to bring in by name; empty brings in every store.
    QStringList stores;
    /// The Neurophotometrics digital-input .csv recorded beside the photometry file; optional.
    QString digitalInputsPath;
};

/// What a reader found in a recording before anything is written: the format, each
/// signal with its length and rate, each event array with its count, and the duration.
struct RecordingSummary
{
    struct Channel
    {
        QString name;
        std::size_t samples = 0;
        double sampleRate = 0.0;
    };
    struct EventArray
    {
        QString name;
        std::size_t count = 0;
    };

    QString format;
    /// Every store of a TDT block, chosen or not, for the store picker.
    QStringList stores;
    std::vector<Channel> channels;
    std::vector<EventArray> events;
    double duration = 0.0;
    QString error;

    bool ok() const { return error.isEmpty(); }
    /// Rich text, one line per signal and event array, for the dialog and the command line.
    QString text(const QString& sourcePath) const;
};

} // namespace zarvi
