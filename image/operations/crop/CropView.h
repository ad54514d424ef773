#pragma once

#include "image/ImageOperationView.h"

#include <vector>

class QCheckBox;
class QLabel;
class QSpinBox;
class QToolButton;

namespace zarvi {

class RegionHandler;
struct RoiShape;

/// The "Crop" parameters: the crop area typed as "Top Left (x, y)" and "Size (width,
/// height)", or drawn as a rectangle on the input frame ("Draw Crop Area"); "Square" keeps
/// width equal to height in the fields and while drawing. The fields and the drawn rectangle
/// follow each other: a rectangle spans the pixels of both its corners, so corners (x0, y0)
/// and (x1, y1) crop [x0, y0, x1 - x0 + 1, y1 - y0 + 1]. A drawn rectangle stays strictly
/// inside the frame; a typed area may touch the frame's edge, and the rectangle then follows
/// it there once one was drawn. The area is checked against the first stack by the crop
/// kernel (its two messages show under the fields) and the preview shows the cropped frame.
/// GUI thread.
class CropView : public ImageOperationView
{
    Q_OBJECT

public:
    explicit CropView(QWidget* parent = nullptr);

protected:
    void datasetsChanged() override;
    bool buildParameters(QVariantMap& parameters) override;
    ImageFramePreview::Computation previewComputation() const override;

private:
    /// [x, y, width, height] as the fields hold it.
    std::vector<double> coordinates() const;
    void setCoordinates(int x, int y, int width, int height);
    /// Shows the crop kernel's message for the fields, if any; true when they can be run.
    bool validate();
    /// A field changed by the user: "Square" makes its partner follow, then the rectangle,
    /// the message and the preview follow the fields.
    void onFieldEdited(QSpinBox* field);
    void onSquareToggled(bool square);
    void onRegionDrawn(const RoiShape& shape);
    /// Moves the drawn rectangle to the fields (or places it, when the frame is shown and
    /// the area lies strictly inside it).
    void showRegion();
    void fieldsChanged();

    QSpinBox* sb_x;
    QSpinBox* sb_y;
    QSpinBox* sb_width;
    QSpinBox* sb_height;
    QCheckBox* cb_square;
    QToolButton* tb_drawCropArea;
    QLabel* lb_cropValidation;
    RegionHandler* m_region;
    /// Set while the view itself sets the fields or the rectangle, so neither echoes back.
    bool m_syncing = false;
    /// The fields hold an area (from the last run or a stack), not their empty start.
    bool m_hasArea = false;
};

} // namespace zarvi
