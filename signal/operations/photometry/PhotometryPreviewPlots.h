#pragma once

#include "signal/operations/photometry/PhotometryDeltaF.h"

#include <QWidget>

class QCustomPlot;

namespace zarvi {

/// The preview of the ΔF/F operation for one pair: the pre-processed isosbestic and
/// biosensor signals with their slopes in blue, and the scatter of the signals the fit
/// used (inliers blue, outliers grey) with the fitted line. Long signals are drawn
/// with every k-th sample, at most MaxPoints per curve. GUI thread.
class PhotometryPreviewPlots : public QWidget
{
    Q_OBJECT

public:
    /// The most points drawn per curve.
    static constexpr std::size_t MaxPoints = 20000;

    explicit PhotometryPreviewPlots(QWidget* parent = nullptr);

    /// Draws a preview result computed with keepPreviewData; `standardized` names the
    /// fit's axis in z-scores.
    void show(const PhotometryDeltaF::Result& result, bool standardized);
    void clear();

    QCustomPlot* isosbesticPlot() const { return m_isosbestic; }
    QCustomPlot* biosensorPlot() const { return m_biosensor; }
    QCustomPlot* fitPlot() const { return m_fit; }

private:
    QCustomPlot* m_isosbestic;
    QCustomPlot* m_biosensor;
    QCustomPlot* m_fit;
};

} // namespace zarvi
