// The crop view on a real stack, shown offscreen: the typed area and the rectangle drawn with
// real mouse drags follow each other, "Square" holds, an area outside the frame is refused
// beside the fields, and a run writes the area.
#include "ImageViewTestSupport.h"

#include "common/TempDir.h"
#include "definitions/ImageOperationDefinitions.h"
#include "framework/OperationSettings.h"
#include "image/operations/crop/CropView.h"
#include "roi/AbstractROI.h"
#include "roi/AbstractROIHandler.h"

#include <QCheckBox>
#include <QLabel>
#include <QSpinBox>
#include <QToolButton>

namespace zarvi {
namespace {

using ID = ImageOperationDefinitions;

/// Four frames of 40 x 30 pixels, numbered as numberedFrames() says.
class CropViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // Each case opens as the first time, without the area an earlier run left.
        OperationSettings::remember(ID::Crop, {});
        stack = test::writeStack(file, test::numberedFrames(4, 40, 30));
        view = std::make_unique<CropView>();
    }

    /// [x, y, width, height] as the fields show it.
    QList<int> fields() const
    {
        return {test::child<QSpinBox>(*view, "sb_x")->value(), test::child<QSpinBox>(*view, "sb_y")->value(),
                test::child<QSpinBox>(*view, "sb_width")->value(),
                test::child<QSpinBox>(*view, "sb_height")->value()};
    }

    /// The two corners of the rectangle on the input frame; empty when none is shown.
    QList<QPoint> rectangle() const
    {
        const AbstractROIHandler* handler = view->preview()->inputView()->activeHandler();
        return handler && !handler->rois().empty() ? handler->rois().front()->points() : QList<QPoint>{};
    }

    void startDrawing()
    {
        test::child<QToolButton>(*view, "tb_drawCropArea")->click();
        ASSERT_NE(view->preview()->inputView()->activeHandler(), nullptr);
    }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("stack.orvel"));
    QString stack;
    QStringList messages;
    std::unique_ptr<CropView> view;
};

TEST_F(CropViewTest, DrawnRectangleAndFieldsFollowEachOther)
{
    test::setUpView(*view, file, {stack}, messages);
    test::showView(*view);
    // The whole frame at first: ranges and values from the stack's size.
    EXPECT_EQ(fields(), QList<int>({0, 0, 40, 30}));
    EXPECT_EQ(test::child<QSpinBox>(*view, "sb_x")->maximum(), 39);
    EXPECT_EQ(test::child<QSpinBox>(*view, "sb_height")->maximum(), 30);

    // A rectangle spans both corner pixels: 5..20 is 16 pixels wide, 4..14 is 11 high.
    startDrawing();
    test::dragMouse(*view->preview()->inputView(), {5, 4}, {20, 14});
    EXPECT_EQ(fields(), QList<int>({5, 4, 16, 11}));
    test::waitForPreview(*view);
    ZarviGraphicsView* output = view->preview()->outputView();
    EXPECT_EQ(output->imageSize(), QSize(16, 11));
    EXPECT_EQ(output->pixelValue(0, 0), 10 * 4 + 5);
    EXPECT_EQ(output->pixelValue(15, 10), 10 * 14 + 20);

    // Typing moves the rectangle and leaves the other fields as they are.
    test::child<QSpinBox>(*view, "sb_x")->setValue(8);
    EXPECT_EQ(rectangle(), QList<QPoint>({{8, 4}, {23, 14}}));
    test::child<QSpinBox>(*view, "sb_height")->setValue(6);
    EXPECT_EQ(rectangle(), QList<QPoint>({{8, 4}, {23, 9}}));
    EXPECT_EQ(fields(), QList<int>({8, 4, 16, 6}));

    // Dragging the rectangle by 3 pixels right and 2 down moves the top left field.
    test::dragMouse(*view->preview()->inputView(), {12, 6}, {15, 8});
    EXPECT_EQ(rectangle(), QList<QPoint>({{11, 6}, {26, 11}}));
    EXPECT_EQ(fields(), QList<int>({11, 6, 16, 6}));

    // A new drag replaces the rectangle, and the fields with it.
    test::dragMouse(*view->preview()->inputView(), {30, 20}, {35, 27});
    EXPECT_EQ(rectangle(), QList<QPoint>({{30, 20}, {35, 27}}));
    EXPECT_EQ(fields(), QList<int>({30, 20, 6, 8}));
}

TEST_F(CropViewTest, SquareKeepsWidthEqualToHeightInTheFieldsAndWhileDrawing)
{
    test::setUpView(*view, file, {stack}, messages);
    test::showView(*view);
    auto* width = test::child<QSpinBox>(*view, "sb_width");
    auto* height = test::child<QSpinBox>(*view, "sb_height");
    test::child<QCheckBox>(*view, "cb_square")->setChecked(true);
    EXPECT_EQ(fields(), QList<int>({0, 0, 30, 30}));
    width->setValue(12);
    EXPECT_EQ(height->value(), 12);
    height->setValue(7);
    EXPECT_EQ(width->value(), 7);
    // 40 is a possible width but not a height of this frame: both stop at 30.
    width->setValue(40);
    EXPECT_EQ(fields(), QList<int>({0, 0, 30, 30}));

    // Dragged 15 right and 5 down, the square takes the shorter side.
    startDrawing();
    test::dragMouse(*view->preview()->inputView(), {5, 5}, {20, 10});
    EXPECT_EQ(fields(), QList<int>({5, 5, 6, 6}));
}

TEST_F(CropViewTest, AreaOutsideTheFrameIsRefusedBesideTheFields)
{
    test::setUpView(*view, file, {stack}, messages);
    test::showView(*view);
    auto* validation = test::child<QLabel>(*view, "lb_cropValidation");
    EXPECT_FALSE(validation->isVisible());
    // 30 + 20 is past the frame's 40 columns.
    test::child<QSpinBox>(*view, "sb_x")->setValue(30);
    test::child<QSpinBox>(*view, "sb_width")->setValue(20);
    EXPECT_TRUE(validation->isVisible());
    EXPECT_EQ(validation->text(), ID::cropOutsideMessage());
    EXPECT_FALSE(view->run());
    EXPECT_FALSE(view->isRunning());
    EXPECT_FALSE(test::hasProcessedData(file));

    // A rectangle touching the right edge is inside.
    test::child<QSpinBox>(*view, "sb_width")->setValue(10);
    EXPECT_FALSE(validation->isVisible());
}

TEST_F(CropViewTest, RunWritesTheAreaAndTheNextViewOpensWithIt)
{
    test::setUpView(*view, file, {stack}, messages);
    test::child<QSpinBox>(*view, "sb_x")->setValue(2);
    test::child<QSpinBox>(*view, "sb_y")->setValue(1);
    test::child<QSpinBox>(*view, "sb_width")->setValue(3);
    test::child<QSpinBox>(*view, "sb_height")->setValue(2);
    const QStringList errors = test::runToEnd(*view);
    ASSERT_TRUE(errors.isEmpty()) << errors.join(' ').toStdString();
    ASSERT_TRUE(messages.isEmpty()) << messages.join(' ').toStdString();

    const std::vector<cv::Mat> cropped = test::readStack(
        file, QStringLiteral("DataProcessed/Scope/Images/Series1/CroppedImages1/Cells/ImageStack"));
    ASSERT_EQ(cropped.size(), 4u);
    for (int k = 0; k < 4; ++k) {
        ASSERT_EQ(cropped[k].size(), cv::Size(3, 2));
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x)
                EXPECT_EQ(cropped[k].at<std::uint16_t>(y, x), 1000 * k + 10 * (y + 1) + (x + 2)) << k;
    }

    CropView next;
    test::setUpView(next, file, {stack}, messages);
    EXPECT_EQ(test::child<QSpinBox>(next, "sb_x")->value(), 2);
    EXPECT_EQ(test::child<QSpinBox>(next, "sb_y")->value(), 1);
    EXPECT_EQ(test::child<QSpinBox>(next, "sb_width")->value(), 3);
    EXPECT_EQ(test::child<QSpinBox>(next, "sb_height")->value(), 2);
}

} // namespace
} // namespace zarvi
