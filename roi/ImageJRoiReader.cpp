#include "roi/ImageJRoiReader.h"

#include "datafile/ZipArchiveReader.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <opencv2/imgproc.hpp>

#include <cmath>
#include <cstdint>
#include <cstring>

namespace zarvi {

namespace {

// Offsets in the 64-byte header.
constexpr qsizetype VersionAt = 4;
constexpr qsizetype TypeAt = 6;
constexpr qsizetype TopAt = 8;
constexpr qsizetype LeftAt = 10;
constexpr qsizetype BottomAt = 12;
constexpr qsizetype RightAt = 14;
constexpr qsizetype CountAt = 16;
/// Where the point count goes when it does not fit the 16 bits at CountAt.
constexpr qsizetype LargeCountAt = 18;
constexpr qsizetype CompositeSizeAt = 36;
constexpr qsizetype OptionsAt = 50;
constexpr qsizetype HeaderSize = 64;

constexpr std::uint16_t SubPixelOption = 128;
/// The first version that may carry sub-pixel coordinates after the integer ones.
constexpr int FirstSubPixelVersion = 222;
/// A ROI set is a few kilobytes per ROI; a file this large is something else.
constexpr qint64 LargestFile = 256ll << 20;

enum Type : std::uint8_t
{
    Polygon = 0,
    Rectangle = 1,
    Oval = 2,
    Line = 3,
    FreeLine = 4,
    PolyLine = 5,
    Freehand = 7,
    Traced = 8,
    Angle = 9,
    Point = 10
};

std::int16_t s16(const QByteArray& bytes, qsizetype at)
{
    return qFromBigEndian<qint16>(bytes.constData() + at);
}

std::uint16_t u16(const QByteArray& bytes, qsizetype at)
{
    return qFromBigEndian<quint16>(bytes.constData() + at);
}

std::int32_t s32(const QByteArray& bytes, qsizetype at)
{
    return qFromBigEndian<qint32>(bytes.constData() + at);
}

float f32(const QByteArray& bytes, qsizetype at)
{
    const std::uint32_t bits = qFromBigEndian<quint32>(bytes.constData() + at);
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

QString typeName(std::uint8_t type)
{
    switch (type) {
    case Line:
        return QStringLiteral("straight line");
    case FreeLine:
        return QStringLiteral("freehand line");
    case PolyLine:
        return QStringLiteral("segmented line");
    case Angle:
        return QStringLiteral("angle");
    case Point:
        return QStringLiteral("point");
    default:
        return QStringLiteral("type %1").arg(type);
    }
}

/// An oval of width x height pixels from (left, top), see the class comment.
void ovalShape(int left, int top, int width, int height, RoiShape& roi)
{
    if (width == height && width % 2 == 1) {
        const int radius = (width - 1) / 2;
        roi.kind = RoiKind::Circle;
        roi.points = {{left + radius, top + radius}, {left + 2 * radius, top + radius}};
        return;
    }
    std::vector<cv::Point2d> outline;
    cv::ellipse2Poly(cv::Point2d(left + (width - 1) / 2.0, top + (height - 1) / 2.0),
                     cv::Size2d((width - 1) / 2.0, (height - 1) / 2.0), 0, 0, 360, 1, outline);
    roi.kind = RoiKind::Polygon;
    roi.points.clear();
    for (const cv::Point2d& p : outline) {
        const cv::Point vertex(static_cast<int>(std::lround(p.x)), static_cast<int>(std::lround(p.y)));
        if (roi.points.empty() || roi.points.back() != vertex)
            roi.points.push_back(vertex);
    }
    if (roi.points.size() > 1 && roi.points.front() == roi.points.back())
        roi.points.pop_back();
}

/// The vertices of a polygon-like ROI; false when the file is too short for them.
bool readVertices(const QByteArray& bytes, int version, int left, int top, std::vector<cv::Point>& points)
{
    qint64 count = u16(bytes, CountAt);
    if (count == 0)
        count = s32(bytes, LargeCountAt);
    const bool subPixel = (u16(bytes, OptionsAt) & SubPixelOption) && version >= FirstSubPixelVersion;
    // The integer offsets (x then y, 16 bits each), then, with sub-pixel resolution,
    // the absolute coordinates as 32-bit floats (x then y).
    if (count <= 0 || HeaderSize + count * (subPixel ? 12 : 4) > bytes.size())
        return false;
    const auto n = static_cast<qsizetype>(count);
    for (qsizetype i = 0; i < n; ++i) {
        if (subPixel) {
            const qsizetype floats = HeaderSize + 4 * n;
            points.emplace_back(static_cast<int>(std::lround(f32(bytes, floats + 4 * i))),
                                static_cast<int>(std::lround(f32(bytes, floats + 4 * n + 4 * i))));
        } else {
            points.emplace_back(left + s16(bytes, HeaderSize + 2 * i),
                                top + s16(bytes, HeaderSize + 2 * n + 2 * i));
        }
    }
    return true;
}

/// The name of a ROI file or archive entry: the file name without its folder and ".roi".
QString roiName(const QString& path)
{
    QString name = path.section(QLatin1Char('/'), -1);
    if (name.endsWith(QStringLiteral(".roi"), Qt::CaseInsensitive))
        name.chop(4);
    return name;
}

} // namespace

bool ImageJRoiReader::decode(const QByteArray& bytes, const QString& name, RoiShape& roi, QString& error)
{
    const QString which = QStringLiteral("<b>%1</b>").arg(name.toHtmlEscaped());
    if (bytes.size() < HeaderSize || !bytes.startsWith("Iout")) {
        error =
            QStringLiteral("%1 is not an ImageJ ROI: it does not start with an \"Iout\" header.").arg(which);
        return false;
    }
    const int version = u16(bytes, VersionAt);
    const std::uint8_t type = static_cast<std::uint8_t>(bytes[TypeAt]);
    const int top = s16(bytes, TopAt);
    const int left = s16(bytes, LeftAt);
    const int width = s16(bytes, RightAt) - left;
    const int height = s16(bytes, BottomAt) - top;
    if (s32(bytes, CompositeSizeAt) > 0) {
        error = QStringLiteral("%1 is a composite ImageJ shape, which is not read.").arg(which);
        return false;
    }
    RoiShape read;
    read.name = name;
    switch (type) {
    case Rectangle:
    case Oval:
        if (width < 1 || height < 1) {
            error = QStringLiteral("%1 has an empty extent of <b>%2 x %3</b> pixels.")
                        .arg(which)
                        .arg(width)
                        .arg(height);
            return false;
        }
        if (type == Oval) {
            ovalShape(left, top, width, height, read);
        } else {
            read.kind = RoiKind::Rectangle;
            read.points = {{left, top}, {left + width - 1, top + height - 1}};
        }
        break;
    case Polygon:
    case Traced:
    case Freehand:
        read.kind = type == Freehand ? RoiKind::Freehand : RoiKind::Polygon;
        if (!readVertices(bytes, version, left, top, read.points)) {
            error = QStringLiteral("%1 is cut short: its points are missing.").arg(which);
            return false;
        }
        break;
    default:
        error =
            QStringLiteral("%1 is an ImageJ <b>%2</b>; only rectangles, ovals, polygons, freehand and traced "
                           "outlines are read.")
                .arg(which, typeName(type));
        return false;
    }
    roi = std::move(read);
    return true;
}

bool ImageJRoiReader::read(const QString& path, std::vector<RoiShape>& rois, QString& error)
{
    const QString which = QStringLiteral("<b>%1</b>").arg(path.toHtmlEscaped());
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("%1 cannot be read: %2").arg(which, file.errorString());
        return false;
    }
    if (file.size() > LargestFile) {
        error = QStringLiteral("%1 is too large for a file of ImageJ ROIs.").arg(which);
        return false;
    }
    const QByteArray bytes = file.readAll();
    if (bytes.startsWith("Iout")) {
        RoiShape roi;
        if (!decode(bytes, roiName(QFileInfo(path).fileName()), roi, error))
            return false;
        rois.push_back(std::move(roi));
        return true;
    }
    if (!bytes.startsWith("PK")) {
        error =
            QStringLiteral("%1 is neither an ImageJ ROI file (.roi) nor a ZIP archive of them.").arg(which);
        return false;
    }
    std::vector<ZipArchiveReader::Entry> entries;
    if (!ZipArchiveReader::read(bytes, entries, error)) {
        error = QStringLiteral("%1: %2").arg(which, error);
        return false;
    }
    std::vector<RoiShape> read;
    for (const ZipArchiveReader::Entry& entry : entries) {
        RoiShape roi;
        if (!decode(entry.data, roiName(entry.name), roi, error)) {
            error = QStringLiteral("%1: %2").arg(which, error);
            return false;
        }
        read.push_back(std::move(roi));
    }
    if (read.empty()) {
        error = QStringLiteral("%1 holds no ROIs.").arg(which);
        return false;
    }
    rois.insert(rois.end(), read.begin(), read.end());
    return true;
}

} // namespace zarvi
