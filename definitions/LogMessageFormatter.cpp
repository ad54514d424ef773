#include "definitions/LogMessageFormatter.h"

#include "definitions/ZarviMainDefinitions.h"

namespace zarvi {

namespace {
const QString lineBreakTag = QStringLiteral("<br>");
}

QString LogMessageFormatter::colorize(const QString& text)
{
    QString result = text;
    if (result.endsWith(lineBreakTag))
        result.chop(lineBreakTag.size());
    if (result.contains(ZarviMainDefinitions::ErrorKey, Qt::CaseInsensitive))
        return ZarviMainDefinitions::ColoredSpanPattern.arg(ZarviMainDefinitions::ColorOrange, result);
    if (result.contains(ZarviMainDefinitions::WarningKey, Qt::CaseInsensitive))
        return ZarviMainDefinitions::ColoredSpanPattern.arg(ZarviMainDefinitions::ColorBlue, result);
    return result;
}

QString LogMessageFormatter::formatProcessMessage(const QString& text)
{
    QString result = text;
    result.replace(QStringLiteral("\r\n"), lineBreakTag);
    result.replace(QLatin1Char('\n'), lineBreakTag);
    return colorize(result);
}

} // namespace zarvi
