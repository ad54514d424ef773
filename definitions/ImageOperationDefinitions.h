#pragma once

#include <QString>

namespace zarvi {

/// Holds the names and parameter keys of the image operations.
/// Keys are never translated. Constants only, safe from any thread.
class ImageOperationDefinitions
{
public:
    static inline const QString BackgroundCorrectedImages = QStringLiteral("BackgroundCorrectedImages");
    static inline const QString BinnedImages = QStringLiteral("BinnedImages");
    static inline const QString CroppedImages = QStringLiteral("CroppedImages");
    static inline const QString DFFImages = QStringLiteral("DFFImages");
    static inline const QString DownSampledImages = QStringLiteral("DownSampledImages");
    static inline const QString MotionCorrectedImages = QStringLiteral("MotionCorrectedImages");
    static inline const QString ReducedStackImages = QStringLiteral("ReducedStackImages");
    static inline const QString SplitedImages = QStringLiteral("SplitedImages");
    static inline const QString StackProjectionImages = QStringLiteral("StackProjectionImages");
};

} // namespace zarvi
