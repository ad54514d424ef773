#include "ImageStackTestSupport.h"

#include "common/TempDir.h"
#include "framework/BackgroundJob.h"
#include "image/operations/dffimages/DFFImagesView.h"
#include "roi/ZarviGraphicsView.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QToolButton>

namespace zarvi {
namespace {

/// 2 x 2 frames: over the three frames pixel (0, 0) is 10, 30, 20 (mean 20), (0, 1) is
/// constant, (1, 0) is 3, 4, 4 (mean 11/3), (1, 1) is 1, 2, 3.
std::vector<cv::Mat> activity()
{
    return {(cv::Mat_<std::uint16_t>(2, 2) << 10, 100, 3, 1),
            (cv::Mat_<std::uint16_t>(2, 2) << 30, 100, 4, 2),
            (cv::Mat_<std::uint16_t>(2, 2) << 20, 100, 4, 3)};
}

class DFFImagesViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        stack = test::writeStack(file, activity());
        // A dark frame of the stack's size and one of another size, in a file of their own.
        test::writeStack(darkFile, {cv::Mat(2, 2, CV_16U, cv::Scalar(10))}, {}, QStringLiteral("Dark"));
        test::writeStack(darkFile, {cv::Mat(2, 3, CV_16U, cv::Scalar(10))}, {}, QStringLiteral("Wide"));
        view.setMessagePresenter(
            [this](const QString&, const QString& message, const QString&, int) { messages << message; });
        view.setupProcess(file, {stack});
    }

    template <typename Widget> Widget* child(const char* name)
    {
        Widget* widget = view.findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }

    /// Waits until the preview shows the current frame's ΔF/F.
    void waitForPreview()
    {
        while (view.preview()->isBusy()) {
            QSignalSpy updated(view.preview(), &ImageFramePreview::previewUpdated);
            ASSERT_TRUE(updated.wait(60000));
        }
    }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("stack.orvel"));
    QString darkFile = dir.file(QStringLiteral("dark.orvel"));
    QString stack;
    const QString darkStack = test::stackGroup(QStringLiteral("Dark")) + QStringLiteral("/ImageStack");
    const QString wideStack = test::stackGroup(QStringLiteral("Wide")) + QStringLiteral("/ImageStack");
    DFFImagesView view;
    QStringList messages;
};

TEST_F(DFFImagesViewTest, TheDarkFrameIsChosenFromAnyFileAndCheckedAgainstTheStack)
{
    EXPECT_EQ(child<QGroupBox>("gb_dffParameters")->title(), QStringLiteral("dF/F Parameters"));
    auto* removeVariations = child<QCheckBox>("cb_removeTemporalVariations");
    EXPECT_EQ(removeVariations->text(), QStringLiteral("Remove Global Temporal Variations "));
    EXPECT_EQ(
        removeVariations->toolTip(),
        QStringLiteral("If checked, removes global temporal variations by subtracting from each image its "
                       "average fluorescence intensity."));
    EXPECT_EQ(child<QLabel>("lb_darkframeWarning")->text(),
              QStringLiteral("*The correction is more precise if a dark frame is subtracted."));
    auto* fileLabel = child<QLabel>("lb_darkframeFile");
    auto* datasets = child<QComboBox>("cb_darkframeDataset");
    auto* validation = child<QLabel>("lb_darkframeValidation");
    EXPECT_EQ(fileLabel->text(), QStringLiteral("No dark frame selected"));
    EXPECT_FALSE(datasets->isEnabled());

    view.setDarkframeFile(darkFile);
    EXPECT_EQ(fileLabel->text(), QStringLiteral("dark.orvel"));
    ASSERT_EQ(datasets->count(), 2);
    datasets->setCurrentIndex(datasets->findData(wideStack));
    EXPECT_FALSE(validation->isHidden());
    EXPECT_EQ(
        validation->text(),
        QStringLiteral("The dark frame <b>%1</b> is <b>3 x 2</b> pixels but the images of <b>%2</b> are "
                       "<b>2 x 2</b>. The dark frame must have the size of the images.")
            .arg(wideStack, stack));
    QSignalSpy started(&view, &AbstractOperationView::sendStartProcess);
    EXPECT_FALSE(view.run());
    EXPECT_EQ(started.count(), 0);

    datasets->setCurrentIndex(datasets->findData(darkStack));
    EXPECT_TRUE(validation->isHidden());
    child<QToolButton>("tb_clearDarkframe")->click();
    EXPECT_EQ(fileLabel->text(), QStringLiteral("No dark frame selected"));
    EXPECT_EQ(datasets->count(), 0);
}

TEST_F(DFFImagesViewTest, ThePreviewShowsDeltaFOnceF0IsComputedAndUntilAFieldChanges)
{
    waitForPreview();
    EXPECT_TRUE(view.preview()->outputView()->isHidden());

    QSignalSpy computed(view.previewJob(), &BackgroundJob::finished);
    child<QPushButton>("pb_preview")->click();
    ASSERT_TRUE(computed.wait(60000));
    child<QSpinBox>("sb_frame")->setValue(1);
    waitForPreview();
    ASSERT_FALSE(view.preview()->outputView()->isHidden());
    // Frame 1: 30 is 50 % above 20, 4 is 9.09 % above 11/3, 2 equals its mean.
    EXPECT_EQ(view.preview()->outputView()->frame(), (std::vector<std::uint16_t>{50, 0, 9, 0}));

    child<QCheckBox>("cb_removeTemporalVariations")->setChecked(true);
    waitForPreview();
    EXPECT_TRUE(view.preview()->outputView()->isHidden());
    EXPECT_EQ(child<QLabel>("lb_previewStatus")->text(),
              QStringLiteral("Press <b>Preview</b> to see the dF/F of the selected image."));
}

TEST_F(DFFImagesViewTest, ARunFromTheViewSubtractsTheChosenDarkFrame)
{
    view.setDarkframeFile(darkFile);
    auto* datasets = child<QComboBox>("cb_darkframeDataset");
    datasets->setCurrentIndex(datasets->findData(darkStack));
    QSignalSpy finished(&view, &AbstractOperationView::sendProcessFinished);
    ASSERT_TRUE(view.run());
    ASSERT_TRUE(finished.wait(60000));
    EXPECT_TRUE(messages.isEmpty()) << messages.join(' ').toStdString();
    const QStringList written = finished.first().at(1).toStringList();
    ASSERT_EQ(written.size(), 1);
    // Less 10, pixel (0, 0) is 0, 20, 10: F0 = 10, and frame 1 is 100 % above it.
    const std::vector<cv::Mat> out = test::readStack(file, written.first());
    ASSERT_EQ(out.size(), 3u);
    EXPECT_EQ(out[1].at<std::uint16_t>(0, 0), 100);

    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    const hid_t dataset = reader.openDataset(reader.fileId(), written.first());
    const QVariantMap attributes = reader.readAllAttributes(dataset);
    reader.closeDataset(dataset);
    EXPECT_EQ(attributes.value("Operations").toString(), QStringLiteral("Images deltaF/F"));
    EXPECT_EQ(attributes.value("DarkframeFilepath").toString(), darkFile);
    EXPECT_EQ(attributes.value("DarkframeDataset").toString(), darkStack);
    EXPECT_EQ(attributes.value("RemoveTemporalVariations").toInt(), 0);
    EXPECT_EQ(attributes.value("F0Method").toString(), QStringLiteral("Mean"));
}

} // namespace
} // namespace zarvi
