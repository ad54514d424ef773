#include "roi/RoiJson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <cmath>
#include <limits>

namespace zarvi {

namespace {

const QString NameKey = QStringLiteral("Name");
const QString ShapeKey = QStringLiteral("Shape");
const QString PointsKey = QStringLiteral("Points");

QString shapeNames()
{
    QStringList names;
    for (RoiKind kind : {RoiKind::Rectangle, RoiKind::Circle, RoiKind::Polygon, RoiKind::Freehand,
                         RoiKind::Point, RoiKind::Line})
        names << roiKindName(kind);
    return names.join(QStringLiteral(", "));
}

/// A value as JSON text (a text quoted and escaped), for messages and for writing.
QString jsonText(const QVariant& value)
{
    const QJsonArray wrapped{QJsonValue::fromVariant(value)};
    const QByteArray json = QJsonDocument(wrapped).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(json.mid(1, json.size() - 2));
}

/// A whole number that fits a 32-bit pixel coordinate, whether it came as an integer
/// or as a JSON number (a double); anything else, 2.5 included, is refused.
bool toCoordinate(const QVariant& value, int& coordinate)
{
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double highest = std::numeric_limits<int>::max();
    double number = 0;
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::Short:
    case QMetaType::UShort:
        number = value.toDouble();
        break;
    case QMetaType::Double:
    case QMetaType::Float:
        number = value.toDouble();
        if (!std::isfinite(number) || std::trunc(number) != number)
            return false;
        break;
    default:
        return false;
    }
    if (number < lowest || number > highest)
        return false;
    coordinate = static_cast<int>(number);
    return true;
}

bool pointFrom(const QVariant& value, cv::Point& point)
{
    if (value.typeId() != QMetaType::QVariantList)
        return false;
    const QVariantList pair = value.toList();
    return pair.size() == 2 && toCoordinate(pair[0], point.x) && toCoordinate(pair[1], point.y);
}

bool roiFrom(const QVariant& value, int index, RoiShape& roi, QString& error)
{
    QString which = QStringLiteral("ROI <b>%1</b>").arg(index);
    if (value.typeId() != QMetaType::QVariantMap) {
        error = QStringLiteral("%1 is not an object with \"Shape\" and \"Points\": <b>%2</b>.")
                    .arg(which, jsonText(value).toHtmlEscaped());
        return false;
    }
    const QVariantMap map = value.toMap();
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        if (it.key() != NameKey && it.key() != ShapeKey && it.key() != PointsKey) {
            error = QStringLiteral("%1 has the unknown key <b>%2</b>; an ROI has \"Name\", \"Shape\" and "
                                   "\"Points\".")
                        .arg(which, it.key().toHtmlEscaped());
            return false;
        }
    if (map.contains(NameKey)) {
        if (map[NameKey].typeId() != QMetaType::QString) {
            error = QStringLiteral("The \"Name\" of %1 is not a text: <b>%2</b>.")
                        .arg(which, jsonText(map[NameKey]).toHtmlEscaped());
            return false;
        }
        roi.name = map[NameKey].toString();
        if (!roi.name.isEmpty())
            which += QStringLiteral(" (<b>%1</b>)").arg(roi.name.toHtmlEscaped());
    }
    if (!map.contains(ShapeKey)) {
        error = QStringLiteral("%1 has no \"Shape\"; it is one of %2.").arg(which, shapeNames());
        return false;
    }
    if (map[ShapeKey].typeId() != QMetaType::QString ||
        !roiKindFromName(map[ShapeKey].toString(), roi.kind)) {
        error = QStringLiteral("%1 has the shape <b>%2</b>; the shapes are %3.")
                    .arg(which, jsonText(map[ShapeKey]).toHtmlEscaped(), shapeNames());
        return false;
    }
    if (!map.contains(PointsKey)) {
        error = QStringLiteral("%1 has no \"Points\", the list of its [x, y] pixel coordinates.").arg(which);
        return false;
    }
    if (map[PointsKey].typeId() != QMetaType::QVariantList) {
        error = QStringLiteral("The \"Points\" of %1 are not a list of [x, y] pairs: <b>%2</b>.")
                    .arg(which, jsonText(map[PointsKey]).toHtmlEscaped());
        return false;
    }
    const QVariantList points = map[PointsKey].toList();
    for (qsizetype i = 0; i < points.size(); ++i) {
        cv::Point point;
        if (!pointFrom(points[i], point)) {
            error = QStringLiteral("Point <b>%1</b> of %2 is not a pair of whole numbers [x, y]: <b>%3</b>.")
                        .arg(i + 1)
                        .arg(which, jsonText(points[i]).toHtmlEscaped());
            return false;
        }
        roi.points.push_back(point);
    }
    return true;
}

} // namespace

bool roisFromJson(const QVariant& value, std::vector<RoiShape>& rois, QString& error)
{
    QVariant parsed = value;
    if (value.typeId() == QMetaType::QString) {
        QJsonParseError parseError;
        const QJsonDocument document = QJsonDocument::fromJson(value.toString().toUtf8(), &parseError);
        if (document.isNull()) {
            error = QStringLiteral("The ROIs are not valid JSON: <b>%1</b> at character %2.")
                        .arg(parseError.errorString())
                        .arg(parseError.offset + 1);
            return false;
        }
        parsed = document.isObject() ? QVariant(document.object().toVariantMap())
                                     : QVariant(document.array().toVariantList());
    }
    QVariantList list;
    if (parsed.typeId() == QMetaType::QVariantMap) {
        list.append(parsed);
    } else if (parsed.typeId() == QMetaType::QVariantList) {
        list = parsed.toList();
    } else {
        error =
            QStringLiteral("ROIs are given as an object {\"Name\": ..., \"Shape\": ..., \"Points\": [[x, y], "
                           "...]} or a list of them.");
        return false;
    }
    std::vector<RoiShape> read;
    for (qsizetype i = 0; i < list.size(); ++i) {
        RoiShape roi;
        if (!roiFrom(list[i], static_cast<int>(i + 1), roi, error))
            return false;
        read.push_back(std::move(roi));
    }
    rois.insert(rois.end(), read.begin(), read.end());
    return true;
}

QString roiToJson(const RoiShape& roi)
{
    QStringList points;
    for (const cv::Point& point : roi.points)
        points << QStringLiteral("[%1,%2]").arg(point.x).arg(point.y);
    QString json = QStringLiteral("{");
    if (!roi.name.isEmpty())
        json += QStringLiteral("\"Name\":%1,").arg(jsonText(roi.name));
    return json + QStringLiteral("\"Shape\":%1,\"Points\":[%2]}")
                      .arg(jsonText(roiKindName(roi.kind)), points.join(QLatin1Char(',')));
}

QString roisToJson(const std::vector<RoiShape>& rois)
{
    QStringList items;
    for (const RoiShape& roi : rois)
        items << roiToJson(roi);
    return QLatin1Char('[') + items.join(QLatin1Char(',')) + QLatin1Char(']');
}

} // namespace zarvi
