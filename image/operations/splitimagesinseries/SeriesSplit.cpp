#include "image/operations/splitimagesinseries/SeriesSplit.h"

#include <QRegularExpression>

namespace zarvi {

std::optional<double> parseSplitDuration(const QString& text)
{
    static const QRegularExpression form(QStringLiteral("^(\\d{2}):(\\d{2}):(\\d{2}):(\\d{3})$"));
    const QRegularExpressionMatch match = form.match(text.trimmed());
    if (!match.hasMatch())
        return std::nullopt;
    const int hours = match.captured(1).toInt();
    const int minutes = match.captured(2).toInt();
    const int seconds = match.captured(3).toInt();
    const int milliseconds = match.captured(4).toInt();
    if (minutes >= 60 || seconds >= 60)
        return std::nullopt;
    const double duration = hours * 3600.0 + minutes * 60.0 + seconds + milliseconds / 1000.0;
    if (duration <= 0.0)
        return std::nullopt;
    return duration;
}

std::vector<std::size_t> seriesStarts(const std::vector<double>& time, SplitMethod method, double duration)
{
    if (time.empty())
        return {};
    std::vector<std::size_t> starts{0};
    const double limit = duration - splitTimeTolerance;
    for (std::size_t k = 1; k < time.size(); ++k) {
        const double reference = method == SplitMethod::DetectTimeGaps ? time[k - 1] : time[starts.back()];
        if (time[k] - reference >= limit)
            starts.push_back(k);
    }
    return starts;
}

} // namespace zarvi
