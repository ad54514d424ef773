// The projection view gives the chosen method and "Concatenate Series" to the run, which
// then writes one frame per selected stack into one output.
#include "ImageViewTestSupport.h"

#include "common/TempDir.h"
#include "definitions/ImageOperationDefinitions.h"
#include "image/operations/stackprojection/StackProjectionView.h"

#include <QCheckBox>
#include <QComboBox>

namespace zarvi {
namespace {

using ID = ImageOperationDefinitions;

TEST(StackProjectionView, MethodAndConcatenationReachTheRun)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("stacks.orvel"));
    const QString first = test::writeStack(file, test::numberedFrames(3, 4, 3));
    const QString second = test::writeStack(file, test::numberedFrames(2, 4, 3), {}, QStringLiteral("Cells"),
                                            QStringLiteral("Series2"));
    QStringList messages;
    StackProjectionView view;
    test::setUpView(view, file, {first, second}, messages);
    auto* method = test::child<QComboBox>(view, "cb_projectionMethod");
    auto* concatenate = test::child<QCheckBox>(view, "cb_concatenateSeries");
    EXPECT_EQ(method->toolTip(), ID::projectionMethodTooltip());
    EXPECT_EQ(concatenate->text(), ID::concatenateSeriesLabel());
    method->setCurrentText(ID::Maximum);
    concatenate->setChecked(true);

    QSignalSpy started(&view, &AbstractOperationView::sendStartProcess);
    const QStringList errors = test::runToEnd(view);
    ASSERT_TRUE(errors.isEmpty()) << errors.join(' ').toStdString();
    const QVariantMap sent = started.first().first().toMap();
    EXPECT_EQ(sent.value(ID::ProjectionMethod), ID::Maximum);
    EXPECT_EQ(sent.value(ID::ConcatenateSeries), 1);

    // The maximum of frames 0..2 is frame 2, of frames 0..1 frame 1: pixel (x, y) 1000 k + 10 y + x.
    const std::vector<cv::Mat> projected = test::readStack(
        file, QStringLiteral("DataProcessed/Scope/Images/Series1/StackProjectionImages1/Cells/ImageStack"));
    ASSERT_EQ(projected.size(), 2u);
    EXPECT_EQ(projected[0].at<std::uint16_t>(2, 3), 2000 + 20 + 3);
    EXPECT_EQ(projected[1].at<std::uint16_t>(2, 3), 1000 + 20 + 3);
}

} // namespace
} // namespace zarvi
