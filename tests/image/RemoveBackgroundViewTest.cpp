#include "ImageStackTestSupport.h"
#include "ImageViewTestSupport.h"

#include "common/TempDir.h"
#include "image/operations/removebackground/RemoveBackgroundView.h"
#include "roi/RegionHandler.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QSignalSpy>

namespace zarvi {
namespace {

const QString backgroundMessage =
    QStringLiteral("The coordinates for removing the background are incorrect. Make sure that the ROI for "
                   "removing background is drawn correctly.");

/// A 40 x 30 frame of 100 + 10 x at pixel (x, y), with a background block of 300 over
/// x 2..7, y 2..6.
cv::Mat stackFrame()
{
    cv::Mat frame(30, 40, CV_16U);
    for (int y = 0; y < frame.rows; ++y)
        for (int x = 0; x < frame.cols; ++x)
            frame.at<std::uint16_t>(y, x) = static_cast<std::uint16_t>(100 + 10 * x);
    frame(cv::Rect(cv::Point(2, 2), cv::Point(8, 7))).setTo(300);
    return frame;
}

/// The frame less 300, pixels below 300 written as 0, row by row.
std::vector<std::uint16_t> corrected(const cv::Mat& frame)
{
    std::vector<std::uint16_t> pixels;
    for (int y = 0; y < frame.rows; ++y)
        for (int x = 0; x < frame.cols; ++x)
            pixels.push_back(static_cast<std::uint16_t>(std::max(0, frame.at<std::uint16_t>(y, x) - 300)));
    return pixels;
}

TEST(RemoveBackgroundViewTest, TheDrawnRegionIsTheParameterAndThePreviewSubtractsItsMean)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("stack.orvel"));
    const cv::Mat frame = stackFrame();
    const QString stack = test::writeStack(file, {frame, frame});
    RemoveBackgroundView view;
    QStringList messages;
    view.setMessagePresenter(
        [&messages](const QString&, const QString& message, const QString&, int) { messages << message; });
    test::openView(view, file, {stack});
    const auto* box = view.findChild<QGroupBox*>(QStringLiteral("gb_drawBackground"));
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->title(), QStringLiteral("Draw an ROI to Calculate Background"));
    const auto* shapes = view.findChild<QComboBox*>(QStringLiteral("cb_shape"));
    ASSERT_EQ(shapes->count(), 4);
    EXPECT_EQ(shapes->itemText(3), QStringLiteral("Freehand"));

    // No region yet: refused beside the shape, with the operation's message.
    QSignalSpy started(&view, &AbstractOperationView::sendStartProcess);
    EXPECT_FALSE(view.run());
    const auto* note = view.findChild<QLabel*>(QStringLiteral("lb_backgroundValidation"));
    EXPECT_TRUE(note->isVisibleTo(&view));
    EXPECT_EQ(note->text(), backgroundMessage);

    test::dragMouse(*view.preview()->inputView(), {2, 2}, {7, 6});
    ASSERT_TRUE(view.regionHandler()->hasRegion());
    EXPECT_FALSE(note->isVisibleTo(&view));
    ASSERT_TRUE(test::previewSettled(view));
    EXPECT_EQ(view.preview()->outputView()->frame(), corrected(frame));

    QSignalSpy finished(&view, &AbstractOperationView::sendProcessFinished);
    ASSERT_TRUE(view.run());
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_TRUE(messages.isEmpty()) << messages.join(' ').toStdString();
    EXPECT_EQ(started.first().first().toMap().value(QStringLiteral("BackgroundCoordinates")).toString(),
              QStringLiteral(R"({"Shape":"Rectangle","Points":[[2,2],[7,6]]})"));
    const std::vector<cv::Mat> written = test::readStack(
        file,
        QStringLiteral("DataProcessed/Scope/Images/Series1/BackgroundCorrectedImages1/Cells/ImageStack"));
    ASSERT_EQ(written.size(), 2u);
    EXPECT_EQ(std::vector<std::uint16_t>(written[1].begin<std::uint16_t>(), written[1].end<std::uint16_t>()),
              corrected(frame));
}

} // namespace
} // namespace zarvi
