#pragma once

#include "image/ImageOperationView.h"

class QComboBox;
class QLabel;
class QTimeEdit;

namespace zarvi {

/// The "Split Images in Series" parameters ("Method" and "Duration" in "Split in Series
/// Parameters"). The duration is edited as a time, "HH:mm:ss:zzz", so that only that form
/// can be typed; a zero duration is refused beside the field. Under the fields, how many
/// series the first stack's times give with the method and duration as they are: splitting
/// reads only the times, so this costs nothing and shows whether the duration is the one
/// meant. The preview shows the input frames. GUI thread.
class SplitImagesInSeriesView : public ImageOperationView
{
    Q_OBJECT

public:
    explicit SplitImagesInSeriesView(QWidget* parent = nullptr);

    /// The duration as the operation takes it, "HH:mm:ss:zzz".
    QString durationText() const;

protected:
    void datasetsChanged() override;
    bool buildParameters(QVariantMap& parameters) override;

private:
    /// Checks the duration and counts the series; false when the duration is zero.
    bool validate();

    QComboBox* cb_method;
    QTimeEdit* te_duration;
    QLabel* lb_durationValidation;
    QLabel* lb_seriesCount;
};

} // namespace zarvi
