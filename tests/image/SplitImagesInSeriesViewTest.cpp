// The split view: the duration typed as a time gives the operation's text, a zero duration is
// refused beside the field, and the number of series follows the method and the duration.
#include "ImageViewTestSupport.h"

#include "common/TempDir.h"
#include "definitions/ImageOperationDefinitions.h"
#include "image/operations/splitimagesinseries/SplitImagesInSeriesView.h"

#include <QComboBox>
#include <QLabel>
#include <QTimeEdit>

namespace zarvi {
namespace {

using ID = ImageOperationDefinitions;

TEST(SplitImagesInSeriesView, DurationTextSeriesCountAndZeroRefused)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("stack.orvel"));
    // Two bursts of frames 1.9 s apart, each 0.6 s long.
    const QString stack =
        test::writeStack(file, test::numberedFrames(6, 4, 3), {0.0, 0.3, 0.6, 2.5, 2.8, 3.1});
    QStringList messages;
    SplitImagesInSeriesView view;
    test::setUpView(view, file, {stack}, messages);
    auto* method = test::child<QComboBox>(view, "cb_method");
    auto* duration = test::child<QTimeEdit>(view, "te_duration");
    auto* series = test::child<QLabel>(view, "lb_seriesCount");
    auto* validation = test::child<QLabel>(view, "lb_durationValidation");
    EXPECT_EQ(duration->displayFormat(), QStringLiteral("HH:mm:ss:zzz"));

    // A gap of at least 1.5 s: one, between 0.6 and 2.5.
    method->setCurrentText(ID::DetectTimeGaps);
    duration->setTime(QTime(0, 0, 1, 500));
    EXPECT_EQ(view.durationText(), QStringLiteral("00:00:01:500"));
    EXPECT_EQ(series->text(), ID::seriesCountNote().arg(2));
    // Series of less than 0.5 s from their first frame: {0, 0.3}, {0.6}, {2.5, 2.8}, {3.1}.
    method->setCurrentText(ID::SplitByDuration);
    duration->setTime(QTime(0, 0, 0, 500));
    EXPECT_EQ(series->text(), ID::seriesCountNote().arg(4));

    duration->setTime(QTime(0, 0, 0, 0));
    EXPECT_FALSE(validation->isHidden());
    EXPECT_EQ(validation->text(),
              ID::splitDurationMessage().arg(QStringLiteral("00:00:00:000"), ID::DurationFormat));
    EXPECT_FALSE(view.run());

    duration->setTime(QTime(1, 2, 3, 45));
    EXPECT_TRUE(validation->isHidden());
    QSignalSpy started(&view, &AbstractOperationView::sendStartProcess);
    const QStringList errors = test::runToEnd(view);
    ASSERT_TRUE(errors.isEmpty()) << errors.join(' ').toStdString();
    EXPECT_EQ(started.first().first().toMap().value(ID::Duration), QStringLiteral("01:02:03:045"));
    EXPECT_EQ(started.first().first().toMap().value(ID::Method), ID::SplitByDuration);
}

} // namespace
} // namespace zarvi
