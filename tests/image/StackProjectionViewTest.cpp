// The projection view gives the chosen method and "Concatenate Series" to the run.
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
    method->setCurrentText(ID::StandardDeviation);
    concatenate->setChecked(true);

    QSignalSpy started(&view, &AbstractOperationView::sendStartProcess);
    const QStringList errors = test::runToEnd(view);
    ASSERT_TRUE(errors.isEmpty()) << errors.join(' ').toStdString();
    const QVariantMap sent = started.first().first().toMap();
    EXPECT_EQ(sent.value(ID::ProjectionMethod), ID::StandardDeviation);
    EXPECT_EQ(sent.value(ID::ConcatenateSeries), 1);
}

} // namespace
} // namespace zarvi
