// The discard view on a real stack: the list holds one line per frame with its time, the
// frame clicked is previewed, the selection and the check boxes are what the run gets, and a
// selection of every frame is refused.
#include "ImageViewTestSupport.h"

#include "common/TempDir.h"
#include "definitions/ImageOperationDefinitions.h"
#include "framework/OperationSettings.h"
#include "image/operations/discardframes/DiscardFramesView.h"

#include <QCheckBox>
#include <QLabel>
#include <QListView>

namespace zarvi {
namespace {

using ID = ImageOperationDefinitions;

class DiscardFramesViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // Each case opens as the first time, with the check boxes off.
        OperationSettings::remember(ID::DiscardFrames, {});
        stack = test::writeStack(file, test::numberedFrames(5, 6, 4), {0.0, 0.1, 0.25, 0.5, 1.125});
        view = std::make_unique<DiscardFramesView>();
        test::setUpView(*view, file, {stack}, messages);
        list = test::child<QListView>(*view, "lw_frames");
    }

    /// A click on `row`, with Ctrl held when `add` (as the user adds to the selection).
    void clickRow(int row, bool add)
    {
        const QRect rectangle = list->visualRect(list->model()->index(row, 0));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, add ? Qt::ControlModifier : Qt::NoModifier,
                          rectangle.center());
    }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("stack.orvel"));
    QString stack;
    QStringList messages;
    std::unique_ptr<DiscardFramesView> view;
    QListView* list = nullptr;
};

TEST_F(DiscardFramesViewTest, ClickedFramesArePreviewedAndSentWithTheCheckBoxes)
{
    test::showView(*view);
    ASSERT_EQ(list->model()->rowCount(), 5);
    EXPECT_EQ(list->model()->index(0, 0).data().toString(), QStringLiteral("Frame 0   t = 0.000 s"));
    EXPECT_EQ(list->model()->index(4, 0).data().toString(), QStringLiteral("Frame 4   t = 1.125 s"));

    clickRow(1, false);
    clickRow(3, true);
    EXPECT_EQ(view->preview()->currentFrame(), 3);
    test::waitForPreview(*view);
    EXPECT_EQ(view->preview()->inputView()->pixelValue(2, 1), 3000 + 10 + 2);

    auto* interpolate = test::child<QCheckBox>(*view, "cb_interpolate");
    EXPECT_EQ(interpolate->text(), ID::interpolateLabel());
    interpolate->setChecked(true);
    test::child<QCheckBox>(*view, "cb_dontSaveParameters")->setChecked(true);
    QSignalSpy started(view.get(), &AbstractOperationView::sendStartProcess);
    const QStringList errors = test::runToEnd(*view);
    ASSERT_TRUE(errors.isEmpty()) << errors.join(' ').toStdString();
    const QVariantMap sent = started.first().first().toMap();
    EXPECT_EQ(sent.value(ID::DiscardedFrames).toList(), QVariantList({1, 3}));
    EXPECT_EQ(sent.value(ID::AutodetectCorruptedFrames), 0);
    EXPECT_EQ(sent.value(ID::InterpolateFrames), 1);
    EXPECT_EQ(sent.value(ID::DontSaveParameters), 1);
}

TEST_F(DiscardFramesViewTest, EveryFrameIsRefusedAndNoFrameSendsNoList)
{
    test::showView(*view);
    auto* validation = test::child<QLabel>(*view, "lb_framesValidation");
    list->selectAll();
    EXPECT_TRUE(validation->isVisible());
    EXPECT_EQ(validation->text(), ID::allFramesDiscardedMessage().arg(stack));
    EXPECT_FALSE(view->run());

    list->clearSelection();
    EXPECT_FALSE(validation->isVisible());
    test::child<QCheckBox>(*view, "cb_autodetect")->setChecked(true);
    QSignalSpy started(view.get(), &AbstractOperationView::sendStartProcess);
    const QStringList errors = test::runToEnd(*view);
    ASSERT_TRUE(errors.isEmpty()) << errors.join(' ').toStdString();
    EXPECT_FALSE(started.first().first().toMap().contains(ID::DiscardedFrames));
}

} // namespace
} // namespace zarvi
