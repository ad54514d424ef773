#include "framework/PipelineFile.h"

#include "definitions/FileDefinitions.h"
#include "definitions/ZarviMainDefinitions.h"
#include "framework/OperationRegistry.h"

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

QString valueText(const QVariant& value)
{
    if (OperationParameter::isEmptyValue(value))
        return ZarviMainDefinitions::stageOffText();
    if (value.typeId() == QMetaType::QStringList || value.typeId() == QMetaType::QVariantList) {
        QStringList items;
        for (const QVariant& item : value.toList())
            items << item.toString();
        return QLatin1Char('[') + items.join(QStringLiteral(", ")) + QLatin1Char(']');
    }
    return value.toString();
}

} // namespace

bool PipelineFile::check(const QList<QVariantMap>& steps, QStringList& problems)
{
    const qsizetype before = problems.size();
    for (qsizetype i = 0; i < steps.size(); ++i) {
        QStringList stepProblems;
        QVariantMap normalized;
        OperationRegistry::instance().normalize(steps[i], normalized, stepProblems);
        for (const QString& problem : std::as_const(stepProblems))
            problems << ZarviMainDefinitions::pipelineStepProblem().arg(QString::number(i + 1), problem);
    }
    return problems.size() == before;
}

QString PipelineFile::describe(const QVariantMap& step)
{
    const QString name = step.value(FileDefinitions::Operations).toString();
    QStringList parts;
    const OperationDescriptor* descriptor = OperationRegistry::instance().find(name);
    QStringList keys;
    if (descriptor)
        for (const OperationParameter& declared : descriptor->parameters)
            if (step.contains(declared.key))
                keys << declared.key;
    // Keys the operation does not declare are shown too (after the others): the check names them.
    for (auto it = step.cbegin(); it != step.cend(); ++it)
        if (it.key() != FileDefinitions::Operations && !keys.contains(it.key()))
            keys << it.key();
    for (const QString& key : std::as_const(keys))
        parts << QStringLiteral("%1 = %2").arg(key, valueText(step.value(key)));
    return parts.isEmpty() ? name : name + QStringLiteral(" — ") + parts.join(QStringLiteral(", "));
}

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
