#pragma once

#include <QString>

namespace zarvi {

/// Holds the names and parameter keys of the volumetric-image operations.
/// Keys are never translated. Constants only, safe from any thread.
class VoluImagesOperationDefinitions
{
public:
    static inline const QString BackgroundCorrectedVoluImages = QStringLiteral("BackgroundCorrectedVoluImages");
    static inline const QString BinnedVoluImages = QStringLiteral("BinnedVoluImages");
    static inline const QString CroppedVoluImages = QStringLiteral("CroppedVoluImages");
    static inline const QString DFFVoluImages = QStringLiteral("DFFVoluImages");
    static inline const QString DownSampledVoluImages = QStringLiteral("DownSampledVoluImages");
    static inline const QString MotionCorrectedVoluImages = QStringLiteral("MotionCorrectedVoluImages");
    static inline const QString ReducedStackVoluImages = QStringLiteral("ReducedStackVoluImages");
    static inline const QString StackProjectionVoluImages = QStringLiteral("StackProjectionVoluImages");
};

} // namespace zarvi
