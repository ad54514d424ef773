#include "framework/PipelineFile.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace zarvi {

namespace {

bool parse(const QByteArray& text, const QString& origin, QJsonDocument& document, QString& error)
{
    QJsonParseError parseError;
    document = QJsonDocument::fromJson(text, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        error = QStringLiteral("%1 is not valid JSON: %2 (at character %3).")
                    .arg(origin, parseError.errorString())
                    .arg(parseError.offset);
        return false;
    }
    return true;
}

bool load(const QString& path, QByteArray& text, QString& error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("Cannot read %1: %2").arg(path, file.errorString());
        return false;
    }
    text = file.readAll();
    return true;
}

} // namespace

bool PipelineFile::read(const QString& path, QList<QVariantMap>& steps, QString& error)
{
    QByteArray text;
    QJsonDocument document;
    if (!load(path, text, error) || !parse(text, path, document, error))
        return false;
    if (!document.isArray()) {
        error = QStringLiteral("%1 must hold a list of operations.").arg(path);
        return false;
    }
    steps.clear();
    for (const QJsonValue& value : document.array()) {
        if (!value.isObject()) {
            error = QStringLiteral("Every step of %1 must be an object of parameters.").arg(path);
            return false;
        }
        steps << value.toObject().toVariantMap();
    }
    if (steps.isEmpty()) {
        error = QStringLiteral("%1 holds no operation.").arg(path);
        return false;
    }
    return true;
}

bool PipelineFile::write(const QString& path, const QList<QVariantMap>& steps, QString& error)
{
    QJsonArray array;
    for (const QVariantMap& step : steps)
        array.append(QJsonObject::fromVariantMap(step));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(QJsonDocument(array).toJson()) < 0) {
        error = QStringLiteral("Cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

bool PipelineFile::readParameters(const QString& pathOrJson, QVariantMap& parameters, QString& error)
{
    QByteArray text;
    const bool inline_ = pathOrJson.trimmed().startsWith(QLatin1Char('{'));
    if (inline_)
        text = pathOrJson.toUtf8();
    else if (!load(pathOrJson, text, error))
        return false;
    QJsonDocument document;
    if (!parse(text, inline_ ? QStringLiteral("The parameters") : pathOrJson, document, error))
        return false;
    if (!document.isObject()) {
        error = QStringLiteral("The parameters must be one JSON object.");
        return false;
    }
    parameters = document.object().toVariantMap();
    return true;
}

} // namespace zarvi
