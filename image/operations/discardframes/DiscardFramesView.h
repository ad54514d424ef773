#pragma once

#include "image/ImageOperationView.h"

#include <QVariantList>

class QCheckBox;
class QLabel;
class QListView;
class QStringListModel;

namespace zarvi {

/// The "Discard Frames" parameters: the list "Select Frames to Discard" of the first stack's
/// frames, one line per frame with its number (0-based, as the preview's frame field and
/// `DiscardedFrames` count) and its time, and the check boxes "Autodetect Black/Corrupted
/// Frames", "Interpolate" and "Do not save parameters". The list is a view over a list of
/// texts, so that a stack of many thousands of frames fills at once. The frame last clicked
/// is shown in the preview. A selection of every frame is refused beside the list. The
/// selection is not remembered between runs: it belongs to one stack. GUI thread.
class DiscardFramesView : public ImageOperationView
{
    Q_OBJECT

public:
    explicit DiscardFramesView(QWidget* parent = nullptr);

    /// The selected frames, 0-based, in increasing order.
    QVariantList selectedFrames() const;

protected:
    void datasetsChanged() override;
    bool buildParameters(QVariantMap& parameters) override;

private:
    bool validate();

    QStringListModel* m_frames;
    QListView* lw_frames;
    QLabel* lb_framesValidation;
    QCheckBox* cb_autodetect;
    QCheckBox* cb_interpolate;
    QCheckBox* cb_dontSaveParameters;
};

} // namespace zarvi
