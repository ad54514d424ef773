// The Motion Correction view on real files, offscreen.
#include "ImageStackTestSupport.h"
#include "MotionTestImages.h"

#include "common/TempDir.h"
#include "image/ImageFramePreview.h"
#include "image/operations/motioncorrection/MotionCorrectionView.h"
#include "image/operations/motioncorrection/MotionShiftPlot.h"
#include "roi/ZarviGraphicsView.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>

#include <qcustomplot.h>

namespace zarvi {
namespace {

template <typename T> T* child(const QWidget& view, const char* name)
{
    T* widget = view.findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

QString shownText(const QWidget& view, const char* name)
{
    const auto* label = view.findChild<QLabel*>(QString::fromLatin1(name));
    return label && !label->isHidden() ? label->text() : QString();
}

/// Waits for the view's reference, shift and preview jobs to end.
void settle(MotionCorrectionView& view)
{
    while (view.isComputing() || view.preview()->isBusy()) {
        QSignalSpy updated(view.preview(), &ImageFramePreview::previewUpdated);
        updated.wait(100);
    }
}

class MotionCorrectionViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // Frame 0 is the scene, frame k is moved by moves[k].
        const cv::Mat scene = test::cellScene(96, 32, 25, 4);
        std::vector<cv::Mat> frames;
        for (const cv::Point move : moves) {
            cv::Mat stored;
            test::translated(scene, move.x, move.y).convertTo(stored, CV_16U);
            frames.push_back(stored);
        }
        input = test::writeStack(file, frames, {0.0, 0.5, 1.0, 1.5});
        view.setMessagePresenter(
            [this](const QString&, const QString& message, const QString&, int) { messages << message; });
    }

    const std::vector<cv::Point> moves{{0, 0}, {2, -1}, {-3, 0}, {1, 4}};
    test::TempDir dir;
    QString file = dir.file(QStringLiteral("view.orvel"));
    QString input;
    QStringList messages;
    MotionCorrectionView view;
};

TEST_F(MotionCorrectionViewTest, FieldsCarryTheirTextsAndTheExternalFileRowShowsOnlyWhenChosen)
{
    view.setupProcess(file, {input});
    settle(view);
    auto* source = child<QComboBox>(view, "cb_referenceSource");
    ASSERT_NE(source, nullptr);
    EXPECT_EQ(source->currentText(), QStringLiteral("Current File"));
    EXPECT_EQ(source->count(), 2);
    EXPECT_EQ(source->itemText(1), QStringLiteral("External File"));
    EXPECT_EQ(source->toolTip(),
              QStringLiteral(
                  "Allows to select a file and a dataset to use as a reference frame from motion "
                  "score:<br><b>Current File</b> - Algorithm uses current file and dataset for reference "
                  "frame.<br><b>External File</b> - Algorithm uses external file to select dataset for "
                  "reference frame.This option is usefull if several recording sessions were performed "
                  "on the same subject."));
    EXPECT_EQ(
        child<QLineEdit>(view, "le_referenceFile")->toolTip(),
        QStringLiteral("Allows to select .orvel file to load reference frame from a different recording "
                       "session."));
    EXPECT_EQ(child<QSpinBox>(view, "sb_referenceFrame")->toolTip(),
              QStringLiteral("Index of the reference frame to align to."));
    EXPECT_EQ(child<QSpinBox>(view, "sb_referenceFrame")->maximum(), 3);
    EXPECT_EQ(child<QCheckBox>(view, "cb_applyShiftsToSensor2")->text(),
              QStringLiteral("Apply X-Y shifts to the second sensor"));
    EXPECT_EQ(child<QPushButton>(view, "pb_loadReferenceFrame")->text(),
              QStringLiteral("Load Reference Frame"));
    EXPECT_EQ(child<QComboBox>(view, "cb_referenceDataset")->currentText(), input);

    auto* fileRow = child<QWidget>(view, "w_referenceFile");
    EXPECT_TRUE(fileRow->isHidden());
    source->setCurrentText(QStringLiteral("External File"));
    EXPECT_FALSE(fileRow->isHidden());
    EXPECT_FALSE(view.run());
    EXPECT_EQ(shownText(view, "lb_validation"),
              QStringLiteral("No external file was selected. Please select a file."));
    // The other session's file lists its stacks.
    const QString other = dir.file(QStringLiteral("other.orvel"));
    const QString otherStack =
        test::writeStack(other, {cv::Mat(96, 96, CV_16U, cv::Scalar(5))}, {}, QStringLiteral("Old"));
    child<QLineEdit>(view, "le_referenceFile")->setText(other);
    emit child<QLineEdit>(view, "le_referenceFile")->editingFinished();
    EXPECT_EQ(child<QComboBox>(view, "cb_referenceDataset")->currentText(), otherStack);
    EXPECT_EQ(shownText(view, "lb_validation"), QString());
}

TEST_F(MotionCorrectionViewTest, TheReferenceIsLoadedAndThePreviewShowsTheFrameMovedBack)
{
    view.setupProcess(file, {input});
    settle(view);
    ASSERT_NE(view.reference(), nullptr);
    EXPECT_EQ(child<ZarviGraphicsView>(view, "gv_reference")->frame().size(), 96u * 96u);
    child<QSpinBox>(*view.preview(), "sb_frame")->setValue(1);
    settle(view);
    // Frame 1 lies 2 right and 1 up: moved back, it is frame 0 but for the 2 right
    // columns and the top row, which nothing covers.
    const std::vector<cv::Mat> frames = test::readStack(file, input);
    const std::vector<std::uint16_t>& shown = view.preview()->outputView()->frame();
    ASSERT_EQ(shown.size(), 96u * 96u);
    for (int y = 0; y < 96; ++y)
        for (int x = 0; x < 96; ++x)
            ASSERT_EQ(shown[y * 96 + x], x >= 94 || y < 1 ? 0 : frames[0].at<std::uint16_t>(y, x))
                << x << ", " << y;
}

TEST_F(MotionCorrectionViewTest, ShiftsOfARangeAndOfARunArePlottedAgainstTime)
{
    view.setupProcess(file, {input});
    settle(view);
    child<QSpinBox>(view, "sb_firstFrame")->setValue(1);
    child<QSpinBox>(view, "sb_lastFrame")->setValue(3);
    view.previewShifts();
    settle(view);
    QCPGraph* x = view.shiftPlot()->xGraph();
    QCPGraph* y = view.shiftPlot()->yGraph();
    ASSERT_EQ(x->dataCount(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_DOUBLE_EQ(x->data()->at(i)->key, 0.5 * (i + 1));
        EXPECT_DOUBLE_EQ(x->data()->at(i)->value, moves[i + 1].x);
        EXPECT_DOUBLE_EQ(y->data()->at(i)->value, moves[i + 1].y);
    }
    EXPECT_EQ(x->name(), QStringLiteral("X Shift"));
    EXPECT_EQ(y->name(), QStringLiteral("Y Shift"));

    QSignalSpy finished(&view, &AbstractOperationView::sendProcessFinished);
    ASSERT_TRUE(view.run());
    ASSERT_TRUE(finished.wait(60000));
    ASSERT_TRUE(messages.isEmpty()) << messages.join(' ').toStdString();
    ASSERT_EQ(x->dataCount(), 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_DOUBLE_EQ(x->data()->at(i)->key, 0.5 * i);
        EXPECT_DOUBLE_EQ(x->data()->at(i)->value, moves[i].x);
        EXPECT_DOUBLE_EQ(y->data()->at(i)->value, moves[i].y);
    }
}

TEST_F(MotionCorrectionViewTest, AStackThatIsNotSquareIsRefusedByTheView)
{
    const QString wide =
        test::writeStack(file, {cv::Mat(32, 64, CV_16U, cv::Scalar(1))}, {}, QStringLiteral("Wide"));
    view.setupProcess(file, {wide});
    settle(view);
    EXPECT_FALSE(view.run());
    EXPECT_EQ(shownText(view, "lb_validation"),
              QStringLiteral("The input images are not square. This operation can only be applied to square "
                             "images. Use Crop operation to make images square."));
}

} // namespace
} // namespace zarvi
