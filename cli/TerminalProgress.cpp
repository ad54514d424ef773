#include "cli/TerminalProgress.h"

#include <QRegularExpression>
#include <QTextStream>

#include <unistd.h>

namespace zarvi {

TerminalProgress::TerminalProgress() : m_interactive(::isatty(STDERR_FILENO) == 1) {}

QString TerminalProgress::plainText(const QString& richText)
{
    QString text = richText;
    text.replace(QStringLiteral("<br>"), QStringLiteral("\n"));
    text.remove(QRegularExpression(QStringLiteral("<[^>]*>")));
    text.replace(QStringLiteral("&lt;"), QStringLiteral("<"));
    text.replace(QStringLiteral("&gt;"), QStringLiteral(">"));
    text.replace(QStringLiteral("&quot;"), QStringLiteral("\""));
    text.replace(QStringLiteral("&amp;"), QStringLiteral("&"));
    return text;
}

void TerminalProgress::setPercent(int percent)
{
    if (percent == m_percent)
        return;
    m_percent = percent;
    if (m_interactive) {
        draw();
    } else if (percent >= m_lastLogged + 10 || percent == 100) {
        m_lastLogged = percent;
        QTextStream(stderr) << percent << "% " << m_label << '\n';
    }
}

void TerminalProgress::setLabel(const QString& label)
{
    m_label = label;
    if (m_interactive)
        draw();
    else
        QTextStream(stderr) << label << '\n';
}

void TerminalProgress::draw()
{
    constexpr int width = 30;
    const int filled = std::max(0, m_percent) * width / 100;
    QTextStream(stderr) << '\r' << '[' << QString(filled, QLatin1Char('#')) << QString(width - filled, QLatin1Char(' '))
                        << "] " << qSetFieldWidth(3) << std::max(0, m_percent) << qSetFieldWidth(0) << "% " << m_label
                        << "\x1b[K" << Qt::flush;
}

void TerminalProgress::printMessage(const QString& title, const QString& message, const QString& details)
{
    QTextStream err(stderr);
    if (m_interactive)
        err << '\n';
    err << title << ": " << plainText(message) << '\n';
    if (!details.isEmpty())
        err << plainText(details) << '\n';
}

void TerminalProgress::finish()
{
    if (m_interactive && m_percent >= 0)
        QTextStream(stderr) << '\n';
}

} // namespace zarvi
