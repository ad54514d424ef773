#include "ImageStackTestSupport.h"
#include "ImageViewTestSupport.h"

#include "common/TempDir.h"
#include "datafile/SignalDataset.h"
#include "image/operations/roisignals/ROISignalsView.h"
#include "roi/AbstractROI.h"
#include "roi/CellsHandler.h"
#include "roi/RoiStore.h"

#include <QLabel>
#include <QListWidget>
#include <QSignalSpy>
#include <QtEndian>

namespace zarvi {
namespace {

/// 40 x 30 frames on a background of 7: the stored cell ROI1 over (2, 2)-(6, 6) holds
/// 100 + k in frame k, the block (20, 10)-(25, 15) that the test draws 500 + 2 k.
std::vector<cv::Mat> cellFrames()
{
    std::vector<cv::Mat> frames;
    for (int k = 0; k < 3; ++k) {
        cv::Mat frame(30, 40, CV_16U, cv::Scalar(7));
        frame(cv::Rect(cv::Point(2, 2), cv::Point(7, 7))).setTo(100 + k);
        frame(cv::Rect(cv::Point(20, 10), cv::Point(26, 16))).setTo(500 + 2 * k);
        frames.push_back(frame);
    }
    return frames;
}

class ROISignalsViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        HDF5Writer_V6 writer;
        ASSERT_GE(writer.open(file), 0);
        QStringList names;
        QString error;
        ASSERT_TRUE(RoiStore::add(writer, stack, {{RoiKind::Rectangle, {{2, 2}, {6, 6}}, 0, {}}}, 40, 30,
                                  names, error))
            << error.toStdString();
        view.setMessagePresenter(
            [this](const QString&, const QString& message, const QString&, int) { messages << message; });
    }

    std::vector<RoiShape> storedRois()
    {
        HDF5Reader_V6 reader;
        EXPECT_GE(reader.open(file), 0);
        std::vector<RoiShape> rois;
        QString error;
        EXPECT_TRUE(RoiStore::list(reader, stack, rois, error)) << error.toStdString();
        return rois;
    }

    QStringList listed() const
    {
        QStringList texts;
        const auto* list = view.findChild<QListWidget*>(QStringLiteral("lw_rois"));
        for (int i = 0; i < list->count(); ++i)
            texts << list->item(i)->text();
        return texts;
    }

    QString validation() const
    {
        const auto* note = view.findChild<QLabel*>(QStringLiteral("lb_roisValidation"));
        return note->isVisibleTo(&view) ? note->text() : QString();
    }

    test::TempDir dir;
    QString file = dir.file(QStringLiteral("cells.orvel"));
    QString stack = test::writeStack(file, cellFrames());
    ROISignalsView view;
    QStringList messages;
};

TEST_F(ROISignalsViewTest, DrawnCellsAreSavedIntoTheFileAndGiveTheirSignals)
{
    test::openView(view, file, {stack});
    // The stored cell is listed and drawn, labelled with its name.
    EXPECT_EQ(listed(), QStringList{QStringLiteral("ROI1 (Rectangle)")});
    ASSERT_EQ(view.cellsHandler()->rois().size(), 1u);
    EXPECT_EQ(view.cellsHandler()->rois().front()->label(), QStringLiteral("ROI1"));

    test::dragMouse(*view.preview()->inputView(), {20, 10}, {25, 15});
    EXPECT_EQ(listed(),
              (QStringList{QStringLiteral("ROI1 (Rectangle)"), QStringLiteral("2 (Rectangle) (not saved)")}));
    EXPECT_FALSE(view.run());
    EXPECT_EQ(
        validation(),
        QStringLiteral(
            "Some cells are not saved in the file yet. Click <b>Save Cells</b> first, or remove them."));

    QSignalSpy stored(&view, &ROISignalsView::storeUpdated);
    view.saveCells();
    ASSERT_TRUE(stored.wait(20000));
    EXPECT_TRUE(stored.first().first().toBool()) << messages.join(' ').toStdString();
    const std::vector<RoiShape> rois = storedRois();
    ASSERT_EQ(rois.size(), 2u);
    EXPECT_EQ(rois[1].name, QStringLiteral("ROI2"));
    EXPECT_EQ(rois[1].points, (std::vector<cv::Point>{{20, 10}, {25, 15}}));
    EXPECT_EQ(view.cellsHandler()->rois().back()->label(), QStringLiteral("ROI2"));
    EXPECT_EQ(listed(),
              (QStringList{QStringLiteral("ROI1 (Rectangle)"), QStringLiteral("ROI2 (Rectangle)")}));

    QSignalSpy started(&view, &AbstractOperationView::sendStartProcess);
    QSignalSpy finished(&view, &AbstractOperationView::sendProcessFinished);
    ASSERT_TRUE(view.run());
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_TRUE(messages.isEmpty()) << messages.join(' ').toStdString();
    EXPECT_EQ(started.first().first().toMap().value(QStringLiteral("ROINames")).toStringList(),
              (QStringList{QStringLiteral("ROI1"), QStringLiteral("ROI2")}));
    const QStringList written = finished.first().at(1).toStringList();
    ASSERT_EQ(written.size(), 2);
    HDF5Reader_V6 reader;
    ASSERT_GE(reader.open(file), 0);
    Signal signal;
    QString error;
    ASSERT_TRUE(SignalDataset::read(reader, written[1], signal, error)) << error.toStdString();
    EXPECT_EQ(signal.values, (std::vector<double>{500, 502, 504}));
}

/// A rectangle as ImageJ writes it: the 64-byte big-endian header only.
QByteArray imageJRectangle(qint16 top, qint16 left, qint16 bottom, qint16 right)
{
    QByteArray bytes(64, '\0');
    bytes.replace(0, 4, "Iout");
    qToBigEndian<qint16>(228, bytes.data() + 4);
    bytes[6] = 1;
    for (const auto& [offset, value] : {std::pair{8, top}, {10, left}, {12, bottom}, {14, right}})
        qToBigEndian<qint16>(value, bytes.data() + offset);
    return bytes;
}

TEST_F(ROISignalsViewTest, ImportedCellsAreSavedWithTheOthersAndStoredRoisCanBeRemoved)
{
    const QString roiFile = dir.file(QStringLiteral("box.roi"));
    QFile out(roiFile);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(imageJRectangle(5, 4, 11, 14));
    out.close();
    test::openView(view, file, {stack});
    ASSERT_TRUE(view.importRois(roiFile));
    EXPECT_EQ(listed(), (QStringList{QStringLiteral("ROI1 (Rectangle)"),
                                     QStringLiteral("box (Rectangle) (not saved)")}));
    // The same name twice is refused.
    EXPECT_FALSE(view.importRois(roiFile));
    EXPECT_EQ(messages, QStringList{QStringLiteral("An ROI named <b>box</b> already exists.")});

    QSignalSpy stored(&view, &ROISignalsView::storeUpdated);
    view.saveCells();
    ASSERT_TRUE(stored.wait(20000));
    std::vector<RoiShape> rois = storedRois();
    ASSERT_EQ(rois.size(), 2u);
    EXPECT_EQ(rois[1].name, QStringLiteral("box"));
    EXPECT_EQ(rois[1].points, (std::vector<cv::Point>{{4, 5}, {13, 10}}));

    auto* list = view.findChild<QListWidget*>(QStringLiteral("lw_rois"));
    for (const int row : {1, 0}) {
        list->setCurrentRow(row);
        view.removeCurrentRoi();
        ASSERT_TRUE(stored.wait(20000));
    }
    EXPECT_TRUE(storedRois().empty());
    EXPECT_TRUE(view.cellsHandler()->rois().empty());
    EXPECT_TRUE(listed().isEmpty());
    EXPECT_FALSE(view.run());
    EXPECT_TRUE(
        validation().startsWith(QStringLiteral("The image stack <b>%1</b> has no cell ROIs.").arg(stack)));
}

} // namespace
} // namespace zarvi
