#include "VideoTestSupport.h"

#include "behavior/operations/tracking/TrackingPreview.h"
#include "behavior/operations/tracking/TrackingView.h"
#include "roi/ZarviGraphicsView.h"

#include <QCheckBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QSignalSpy>
#include <QSpinBox>
#include <QToolButton>

namespace zarvi {
namespace {

constexpr int Frames = 16;
const QString link = QStringLiteral("DataConverted/Camera/Video/Series1/Video1");

/// The disc's centre on frame k; none on frame 10.
cv::Point centre(int k)
{
    return k == 10 ? test::NoDisc : cv::Point(30 + 4 * k, 40 + 2 * k);
}

class TrackingViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::vector<cv::Point> centres;
        for (int k = 0; k < Frames; ++k)
            centres.push_back(centre(k));
        ASSERT_TRUE(test::writeDiscVideo(video, centres));
        ASSERT_EQ(test::linkVideo(file, video), link);
        view.setMessagePresenter(
            [this](const QString&, const QString& message, const QString&, int) { messages << message; });
    }

    template <typename Widget> Widget* child(const char* name) const
    {
        Widget* widget = view.findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }

    /// Lets the preview finish what it was asked.
    void settle()
    {
        QSignalSpy updated(view.preview(), &TrackingPreview::previewUpdated);
        while (view.preview()->isBusy())
            ASSERT_TRUE(updated.wait(60000));
    }

    QString positionText() const { return child<QLabel>("lb_position")->text(); }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("session.orvel"));
    QString video = dir.file(QStringLiteral("arena.avi"));
    TrackingView view;
    QStringList messages;
};

TEST_F(TrackingViewTest, PreviewShowsTheMaskAndThePositionOnAnyFrame)
{
    view.setupProcess(file, {link});
    settle();
    EXPECT_TRUE(view.selectionProblem().isEmpty());
    EXPECT_EQ(
        child<QLabel>("lb_contrastWarning")->text(),
        QStringLiteral("To be able to use this Animal Tracking operation, make sure your video has high "
                       "contrast."));
    EXPECT_EQ(child<QSpinBox>("sb_lastFrame")->value(), Frames - 1);
    EXPECT_EQ(child<QSpinBox>("sb_lastFrame")->maximum(), Frames - 1);

    EXPECT_EQ(view.preview()->position(), cv::Point(30, 40));
    ZarviGraphicsView* mask = view.preview()->maskView();
    EXPECT_EQ(mask->imageSize(), QSize(test::VideoWidth, test::VideoHeight));
    EXPECT_EQ(mask->pixelValue(30, 40), 255);
    EXPECT_EQ(mask->pixelValue(0, 0), 0);
    // The grey frame: the disc (20) on the floor (230).
    EXPECT_EQ(view.preview()->frameView()->pixelValue(30, 40), 20);
    EXPECT_EQ(view.preview()->frameView()->pixelValue(0, 0), 230);
    // Up to level 76 the blurred disc keeps only its middle, about 6 pixels across.
    const int size = child<QSpinBox>("sb_animalSize")->value();
    EXPECT_EQ(positionText(), QStringLiteral("Animal position: (30, 40), size %1 px").arg(size));
    EXPECT_GE(size, 4);
    EXPECT_LE(size, 8);
    // Half way between disc and floor the mask's edge lies about on the disc's (13 pixels
    // across, its outline through the edge pixels 12 apart), the blur taking a little
    // from a curved edge.
    child<QDoubleSpinBox>("dsb_valueHigh")->setValue(49.0);
    settle();
    EXPECT_GE(child<QSpinBox>("sb_animalSize")->value(), 10);
    EXPECT_LE(child<QSpinBox>("sb_animalSize")->value(), 13);
    child<QDoubleSpinBox>("dsb_valueHigh")->setValue(30.0);

    child<QSpinBox>("sb_previewFrame")->setValue(12);
    settle();
    EXPECT_EQ(view.preview()->position(), cv::Point(78, 64));
    // Back to an earlier frame, which reopens the video.
    child<QSpinBox>("sb_previewFrame")->setValue(10);
    settle();
    EXPECT_EQ(view.preview()->position(), cv::Point(-1, -1));
    EXPECT_EQ(positionText(), QStringLiteral("No animal found on this frame."));

    child<QSpinBox>("sb_previewFrame")->setValue(3);
    settle();
    EXPECT_EQ(view.preview()->position(), cv::Point(42, 46));
    // Up to 2 % (level 5): the disc (20) is no longer kept.
    child<QDoubleSpinBox>("dsb_valueHigh")->setValue(2.0);
    settle();
    EXPECT_EQ(positionText(), QStringLiteral("No animal found on this frame."));
    EXPECT_EQ(view.preview()->maskView()->pixelValue(42, 46), 0);
}

TEST_F(TrackingViewTest, ResetRestoresTheThresholdsAndGreyDisablesColour)
{
    view.setupProcess(file, {link});
    settle();
    QCheckBox* grey = child<QCheckBox>("cb_convertToGrayscale");
    EXPECT_TRUE(grey->isChecked());
    EXPECT_FALSE(child<QSpinBox>("sb_hueLow")->isEnabled());
    EXPECT_FALSE(child<QDoubleSpinBox>("dsb_saturationHigh")->isEnabled());
    grey->setChecked(false);
    EXPECT_TRUE(child<QSpinBox>("sb_hueLow")->isEnabled());
    EXPECT_TRUE(child<QDoubleSpinBox>("dsb_saturationHigh")->isEnabled());

    child<QSpinBox>("sb_hueLow")->setValue(40);
    child<QSpinBox>("sb_hueHigh")->setValue(90);
    child<QDoubleSpinBox>("dsb_saturationLow")->setValue(20);
    child<QDoubleSpinBox>("dsb_valueHigh")->setValue(70);
    QToolButton* reset = child<QToolButton>("tb_resetParameters");
    EXPECT_EQ(reset->text(), QStringLiteral("Reset Parameters"));
    EXPECT_EQ(reset->toolTip(), QStringLiteral("Resets all threshold parameters (Hue, Saturation, Value)."));
    reset->click();
    EXPECT_EQ(child<QSpinBox>("sb_hueLow")->value(), 0);
    EXPECT_EQ(child<QSpinBox>("sb_hueHigh")->value(), 180);
    EXPECT_EQ(child<QDoubleSpinBox>("dsb_saturationLow")->value(), 0.0);
    EXPECT_EQ(child<QDoubleSpinBox>("dsb_saturationHigh")->value(), 100.0);
    EXPECT_EQ(child<QDoubleSpinBox>("dsb_valueLow")->value(), 0.0);
    EXPECT_EQ(child<QDoubleSpinBox>("dsb_valueHigh")->value(), 30.0);
    EXPECT_FALSE(grey->isChecked()) << "the reset leaves Convert to Grayscale as it is";
    settle();
}

TEST_F(TrackingViewTest, RunFromTheViewWritesTheCoordinates)
{
    view.setupProcess(file, {link});
    settle();
    child<QDoubleSpinBox>("dsb_valueLow")->setValue(40);
    EXPECT_FALSE(view.run());
    EXPECT_EQ(
        child<QLabel>("lb_validation")->text(),
        QStringLiteral("The threshold range <b>ValueRange(%)</b> from 40 to 30 is empty: its low bound is "
                       "above its high bound, so no pixel would be kept."));
    child<QDoubleSpinBox>("dsb_valueLow")->setValue(0);
    child<QSpinBox>("sb_lastFrame")->setValue(11);
    child<QCheckBox>("cb_interpolate")->setChecked(true);
    settle();

    QSignalSpy finished(&view, &AbstractOperationView::sendProcessFinished);
    ASSERT_TRUE(view.run());
    ASSERT_TRUE(finished.wait(60000));
    const QStringList errors = finished.first().at(2).toStringList();
    ASSERT_TRUE(errors.isEmpty()) << errors.join(' ').toStdString();
    const QString coordinates = QStringLiteral("DataBehavior/Camera/Coordinates/Series1/Video1/Coordinates1");
    EXPECT_EQ(finished.first().at(1).toStringList(), QStringList{coordinates});
    std::vector<cv::Point> expected;
    for (int k = 0; k <= 11; ++k)
        expected.push_back(centre(k));
    // Frame 10 lies halfway between (66, 58) and (74, 62).
    expected[10] = {70, 60};
    EXPECT_EQ(test::storedCoordinates(file, coordinates), expected);
    const QVariantMap attributes = test::storedDataset(file, coordinates).attributes;
    EXPECT_EQ(attributes.value("Interpolate").toInt(), 1);
    EXPECT_FALSE(attributes.contains("AnimalSize(px)"));
    EXPECT_TRUE(messages.isEmpty()) << messages.join(' ').toStdString();
}

TEST_F(TrackingViewTest, LinkWithoutItsVideoIsRefusedWithTheReason)
{
    ASSERT_TRUE(QFile::remove(video));
    view.setupProcess(file, {link});
    EXPECT_TRUE(
        view.selectionProblem().startsWith(QStringLiteral("The video of <b>%1</b> was not found").arg(link)));
}

} // namespace
} // namespace zarvi
