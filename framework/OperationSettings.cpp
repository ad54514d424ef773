#include "framework/OperationSettings.h"

#include <QSettings>
#include <QUrl>

namespace zarvi {

namespace {

/// Operation names may hold a '/' ("Photometry deltaF/F"), which settings read as a group.
QString settingsKey(const QString& operation)
{
    return QStringLiteral("OperationParameters/") + QString::fromLatin1(QUrl::toPercentEncoding(operation));
}

} // namespace

QVariantMap OperationSettings::last(const QString& operation)
{
    return QSettings().value(settingsKey(operation)).toMap();
}

void OperationSettings::remember(const QString& operation, const QVariantMap& parameters)
{
    QSettings().setValue(settingsKey(operation), parameters);
}

} // namespace zarvi
