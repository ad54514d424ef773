#include "roi/ImageJRoiReader.h"
#include "common/TempDir.h"
#include "roi/RoiGeometry.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

using namespace zarvi;
using zarvi::test::TempDir;

namespace {

/// An ImageJ ROI as the public description of the `.roi` format lays it out.
struct ImageJRoi
{
    std::uint8_t type = 0;
    int top = 0, left = 0, bottom = 0, right = 0;
    /// Polygon vertices relative to (left, top).
    std::vector<cv::Point> offsets;
    /// When given: the sub-pixel option and these absolute coordinates after the offsets.
    std::vector<cv::Point2f> subPixel;
    int version = 228;
};

void putShort(QByteArray& bytes, int at, int value)
{
    bytes[at] = static_cast<char>((value >> 8) & 0xff);
    bytes[at + 1] = static_cast<char>(value & 0xff);
}

void appendShort(QByteArray& bytes, int value)
{
    bytes.append(2, '\0');
    putShort(bytes, static_cast<int>(bytes.size() - 2), value);
}

void appendFloat(QByteArray& bytes, float value)
{
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    bytes.append(4, '\0');
    qToBigEndian(bits, bytes.data() + bytes.size() - 4);
}

/// A 64-byte header: "Iout", version at 4, type at 6, top, left, bottom, right at 8 to
/// 15, the point count at 16, the options at 50; then the x offsets and the y offsets
/// (16-bit big-endian), then, with sub-pixel resolution, every x and every y as 32-bit
/// big-endian floats.
QByteArray encode(const ImageJRoi& roi)
{
    QByteArray bytes(64, '\0');
    std::memcpy(bytes.data(), "Iout", 4);
    putShort(bytes, 4, roi.version);
    bytes[6] = static_cast<char>(roi.type);
    putShort(bytes, 8, roi.top);
    putShort(bytes, 10, roi.left);
    putShort(bytes, 12, roi.bottom);
    putShort(bytes, 14, roi.right);
    putShort(bytes, 16, static_cast<int>(roi.offsets.size()));
    putShort(bytes, 50, roi.subPixel.empty() ? 0 : 128);
    for (const cv::Point& p : roi.offsets)
        appendShort(bytes, p.x);
    for (const cv::Point& p : roi.offsets)
        appendShort(bytes, p.y);
    for (const cv::Point2f& p : roi.subPixel)
        appendFloat(bytes, p.x);
    for (const cv::Point2f& p : roi.subPixel)
        appendFloat(bytes, p.y);
    return bytes;
}

ImageJRoi box(std::uint8_t type, int left, int top, int width, int height)
{
    ImageJRoi roi;
    roi.type = type;
    roi.left = left;
    roi.top = top;
    roi.right = left + width;
    roi.bottom = top + height;
    return roi;
}

ImageJRoi outline(std::uint8_t type, int left, int top, std::vector<cv::Point> offsets)
{
    ImageJRoi roi;
    roi.type = type;
    roi.left = left;
    roi.top = top;
    roi.offsets = std::move(offsets);
    return roi;
}

QString writeFile(const TempDir& dir, const QString& name, const QByteArray& bytes)
{
    QFile file(dir.file(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return file.fileName();
}

RoiShape readOne(const QString& path)
{
    std::vector<RoiShape> rois;
    QString error;
    EXPECT_TRUE(ImageJRoiReader::read(path, rois, error)) << error.toStdString();
    EXPECT_EQ(rois.size(), 1u);
    return rois.empty() ? RoiShape() : rois.front();
}

QString readError(const QString& path)
{
    std::vector<RoiShape> rois;
    QString error;
    EXPECT_FALSE(ImageJRoiReader::read(path, rois, error)) << path.toStdString();
    EXPECT_TRUE(rois.empty());
    return error;
}

} // namespace

TEST(ImageJRoiReader, EachShapeReadsIntoThePointsItEncodes)
{
    TempDir dir;
    // Rectangle 10 x 6 from (2, 3): corners (2, 3) and (11, 8), the same pixel extent.
    const RoiShape rectangle = readOne(writeFile(dir, "cell.1.roi", encode(box(1, 2, 3, 10, 6))));
    EXPECT_EQ(rectangle.name, QStringLiteral("cell.1"));
    EXPECT_EQ(rectangle.kind, RoiKind::Rectangle);
    EXPECT_EQ(rectangle.points, (std::vector<cv::Point>{{2, 3}, {11, 8}}));
    EXPECT_EQ(roiBounds(rectangle), cv::Rect(2, 3, 10, 6));

    // A 7 x 7 oval from (10, 20): the circle of radius 3 about the pixel (13, 23).
    const RoiShape circle = readOne(writeFile(dir, "round.roi", encode(box(2, 10, 20, 7, 7))));
    EXPECT_EQ(circle.kind, RoiKind::Circle);
    EXPECT_EQ(circle.points, (std::vector<cv::Point>{{13, 23}, {16, 23}}));
    EXPECT_EQ(roiBounds(circle), cv::Rect(10, 20, 7, 7));

    // An 8 x 6 oval from (4, 6): centre (7.5, 8.5), half-axes 3.5 and 2.5 through the edge
    // pixels' centres; the vertex at 0 degrees is (11, 8.5), rounded away from zero to (11, 9).
    const RoiShape oval = readOne(writeFile(dir, "oval.roi", encode(box(2, 4, 6, 8, 6))));
    EXPECT_EQ(oval.kind, RoiKind::Polygon);
    ASSERT_FALSE(oval.points.empty());
    EXPECT_EQ(oval.points.front(), cv::Point(11, 9));
    EXPECT_EQ(roiBounds(oval), cv::Rect(4, 6, 8, 6));

    const RoiShape polygon =
        readOne(writeFile(dir, "p.roi", encode(outline(0, 5, 7, {{0, 0}, {10, 2}, {4, 9}}))));
    EXPECT_EQ(polygon.kind, RoiKind::Polygon);
    EXPECT_EQ(polygon.points, (std::vector<cv::Point>{{5, 7}, {15, 9}, {9, 16}}));

    const RoiShape freehand =
        readOne(writeFile(dir, "f.roi", encode(outline(7, 20, 1, {{0, 3}, {2, 0}, {5, 4}, {1, 6}}))));
    EXPECT_EQ(freehand.kind, RoiKind::Freehand);
    EXPECT_EQ(freehand.points, (std::vector<cv::Point>{{20, 4}, {22, 1}, {25, 5}, {21, 7}}));

    const RoiShape traced =
        readOne(writeFile(dir, "t.roi", encode(outline(8, 0, 0, {{0, 0}, {3, 0}, {3, 3}}))));
    EXPECT_EQ(traced.kind, RoiKind::Polygon);
    EXPECT_EQ(traced.points, (std::vector<cv::Point>{{0, 0}, {3, 0}, {3, 3}}));
}

TEST(ImageJRoiReader, SubPixelCoordinatesWinFromVersion222AndRoundHalfAwayFromZero)
{
    TempDir dir;
    // The integer offsets disagree with the floats on purpose, to show which were read.
    ImageJRoi roi = outline(0, 0, 0, {{0, 0}, {1, 1}, {2, 2}});
    roi.subPixel = {{2.5f, 3.5f}, {10.49f, 7.5f}, {6.0f, 12.5f}};
    const RoiShape fine = readOne(writeFile(dir, "fine.roi", encode(roi)));
    EXPECT_EQ(fine.points, (std::vector<cv::Point>{{3, 4}, {10, 8}, {6, 13}}));

    roi.version = 221;
    const RoiShape old = readOne(writeFile(dir, "old.roi", encode(roi)));
    EXPECT_EQ(old.points, (std::vector<cv::Point>{{0, 0}, {1, 1}, {2, 2}}));
}

TEST(ImageJRoiReader, RoiSetArchivesReadStoredAndDeflated)
{
    const QString zip = QStringLiteral(ZARVI_ZIP);
    if (!QFileInfo(zip).isExecutable())
        GTEST_SKIP() << "no zip program to pack the archives";
    TempDir dir;
    writeFile(dir, "a.roi", encode(box(1, 2, 3, 10, 6)));
    // Enough repetitive points for deflate to shrink the entry.
    std::vector<cv::Point> ring;
    for (int degree = 0; degree < 360; degree += 2)
        ring.emplace_back(static_cast<int>(std::lround(40 + 30 * std::cos(degree * M_PI / 180))),
                          static_cast<int>(std::lround(40 + 30 * std::sin(degree * M_PI / 180))));
    writeFile(dir, "b.roi", encode(outline(7, 1, 2, ring)));
    for (const auto& [archive, level, method] :
         {std::tuple{"stored.zip", "-0", 0}, {"packed.zip", "-9", 8}}) {
        const QString command =
            QStringLiteral("cd '%1' && '%2' -q %3 %4 a.roi b.roi").arg(dir.path(), zip, level, archive);
        ASSERT_EQ(std::system(command.toLocal8Bit().constData()), 0) << command.toStdString();
        QFile file(dir.file(archive));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        // The method of the first entry, from its local header, says how zip packed it.
        EXPECT_EQ(qFromLittleEndian<quint16>(file.read(10).constData() + 8), method) << archive;

        std::vector<RoiShape> rois;
        QString error;
        ASSERT_TRUE(ImageJRoiReader::read(dir.file(archive), rois, error)) << error.toStdString();
        ASSERT_EQ(rois.size(), 2u) << archive;
        EXPECT_EQ(rois[0].name, QStringLiteral("a"));
        EXPECT_EQ(rois[0].points, (std::vector<cv::Point>{{2, 3}, {11, 8}}));
        EXPECT_EQ(rois[1].name, QStringLiteral("b"));
        EXPECT_EQ(rois[1].kind, RoiKind::Freehand);
        ASSERT_EQ(rois[1].points.size(), ring.size());
        for (std::size_t i = 0; i < ring.size(); ++i)
            ASSERT_EQ(rois[1].points[i], ring[i] + cv::Point(1, 2)) << archive << " point " << i;
    }

    // One byte changed inside the first stored entry: its CRC-32 no longer matches.
    QFile file(dir.file("stored.zip"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray bytes = file.readAll();
    const int data = 30 + qFromLittleEndian<quint16>(bytes.constData() + 26) +
                     qFromLittleEndian<quint16>(bytes.constData() + 28);
    bytes[data + 20] = static_cast<char>(bytes[data + 20] ^ 0x5a);
    EXPECT_TRUE(readError(writeFile(dir, "damaged.zip", bytes)).contains(QStringLiteral("is damaged")));
}

TEST(ImageJRoiReader, RefusesWhatItCannotRead)
{
    TempDir dir;
    ImageJRoi line = box(3, 0, 0, 5, 5);
    EXPECT_TRUE(
        readError(writeFile(dir, "line.roi", encode(line))).contains(QStringLiteral("<b>straight line</b>")));
    QByteArray shortPolygon = encode(outline(0, 0, 0, {{0, 0}, {1, 1}, {2, 0}}));
    shortPolygon.chop(4);
    EXPECT_TRUE(readError(writeFile(dir, "short.roi", shortPolygon)).contains(QStringLiteral("cut short")));
    EXPECT_TRUE(
        readError(writeFile(dir, "notes.roi", "hello")).contains(QStringLiteral("neither an ImageJ ROI")));
    EXPECT_TRUE(
        readError(writeFile(dir, "empty.roi", encode(box(1, 4, 4, 0, 3)))).contains(QStringLiteral("empty")));
    EXPECT_TRUE(readError(dir.file("missing.roi")).contains(QStringLiteral("cannot be read")));
}
