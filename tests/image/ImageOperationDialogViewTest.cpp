// Every image operation opens its view from the registry in the image operation dialog, on a
// 1600 x 1000 screen, with its texts whole; a picture of each dialog is saved for people to
// look at.
#include "ImageViewTestSupport.h"

#include "common/TempDir.h"
#include "framework/OperationViewRegistry.h"
#include "image/ImageOperationDialog.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLayout>
#include <QListView>
#include <QToolButton>

#include <opencv2/imgproc.hpp>

namespace zarvi {
namespace {

/// Frames of 256 x 256 pixels: a slope with a few bright discs that brighten frame by frame.
std::vector<cv::Mat> discFrames(int frames)
{
    std::vector<cv::Mat> stack = test::numberedFrames(frames, 256, 256);
    for (int k = 0; k < frames; ++k)
        for (const cv::Point centre : {cv::Point(60, 70), cv::Point(150, 110), cv::Point(200, 200)})
            cv::circle(stack[static_cast<std::size_t>(k)], centre, 12, cv::Scalar(6000 + 200 * k),
                       cv::FILLED);
    return stack;
}

/// The names of the visible buttons and one-line labels of `dialog` narrower than their text.
QStringList cutTexts(const QWidget& dialog)
{
    QStringList cut;
    for (const QAbstractButton* button : dialog.findChildren<QAbstractButton*>())
        if (button->isVisible() && !button->text().isEmpty() && button->width() < button->sizeHint().width())
            cut << button->objectName() + QLatin1Char(' ') + button->text();
    for (const QLabel* label : dialog.findChildren<QLabel*>())
        if (label->isVisible() && !label->wordWrap() && !label->text().isEmpty() &&
            label->width() < label->sizeHint().width())
            cut << label->objectName() + QLatin1Char(' ') + label->text();
    return cut;
}

TEST(ImageOperationDialog, EveryOperationOpensReadableWithItsPreview)
{
    test::TempDir dir;
    const QString file = dir.file(QStringLiteral("stack.orvel"));
    const QString stack = test::writeStack(file, discFrames(20));
    for (const QString& name :
         {QStringLiteral("Binning"), QStringLiteral("Crop"), QStringLiteral("Temporal Downsample"),
          QStringLiteral("Discard Frames"), QStringLiteral("Split Images in Series"),
          QStringLiteral("Stack Projection")}) {
        SCOPED_TRACE(name.toStdString());
        std::unique_ptr<AbstractOperationView> made = OperationViewRegistry::instance().create(name);
        auto* view = dynamic_cast<ImageOperationView*>(made.get());
        ASSERT_NE(view, nullptr);
        auto* dialog = new ImageOperationDialog(made.release());
        dialog->setData(file, {stack});
        dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog));
        QCoreApplication::sendPostedEvents();
        dialog->layout()->activate();
        test::waitForPreview(*view);
        EXPECT_GE(dialog->width(), view->openingSize().width());
        EXPECT_GE(dialog->height(), view->openingSize().height());
        EXPECT_GE(view->preview()->inputView()->width(), 300);

        // What a user does first: draw the area, choose frames.
        if (auto* draw = dialog->findChild<QToolButton*>(QStringLiteral("tb_drawCropArea"))) {
            draw->click();
            test::dragMouse(*view->preview()->inputView(), {40, 50}, {180, 160});
        }
        if (auto* list = dialog->findChild<QListView*>(QStringLiteral("lw_frames"))) {
            EXPECT_GE(list->height(), 10 * list->sizeHintForRow(0));
            list->selectionModel()->select(list->model()->index(4, 0), QItemSelectionModel::Select);
            list->selectionModel()->setCurrentIndex(list->model()->index(5, 0), QItemSelectionModel::Select);
        }
        test::waitForPreview(*view);
        QCoreApplication::processEvents();
        EXPECT_EQ(cutTexts(*dialog), QStringList());
        QString picture = name.toLower();
        picture.replace(QLatin1Char(' '), QLatin1Char('-'));
        EXPECT_TRUE(dialog->grab().save(QStringLiteral(ZARVI_TEST_BINARY_DIR "/%1-dialog.png").arg(picture)));
        delete dialog;
    }
}

} // namespace
} // namespace zarvi
