#pragma once

#include <QString>

namespace zarvi {

/// Holds the names and parameter keys of the signal operations.
/// Keys are never translated. Constants only, safe from any thread.
class SignalOperationDefinitions
{
public:
    static inline const QString AlignedSignals = QStringLiteral("AlignedSignals");
    static inline const QString ArithmeticSignals = QStringLiteral("ArithmeticSignals");
    static inline const QString ArtifactCorrectedSignals = QStringLiteral("ArtifactCorrectedSignals");
    static inline const QString LEDArtifactCorrectedSignals = QStringLiteral("LEDArtifactCorrectedSignals");
    static inline const QString SlopeCorrectedSignals = QStringLiteral("SlopeCorrectedSignals");
    static inline const QString DecimatedSignals = QStringLiteral("DecimatedSignals");
    static inline const QString DFFSignals = QStringLiteral("DFFSignals");
    static inline const QString FilteredSignals = QStringLiteral("FilteredSignals");
    static inline const QString InterpolatedSignals = QStringLiteral("InterpolatedSignals");
    static inline const QString LifetimeSignals = QStringLiteral("LifetimeSignals");
    static inline const QString SmoothedSignals = QStringLiteral("SmoothedSignals");
    static inline const QString SplitSignals = QStringLiteral("SplitSignals");
    static inline const QString StandardizedSignals = QStringLiteral("StandardizedSignals");
    static inline const QString ROISignalsOutput = QStringLiteral("ROISignals");
};

} // namespace zarvi
