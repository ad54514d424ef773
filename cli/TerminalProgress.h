#pragma once

#include <QString>

namespace zarvi {

/// Shows a run's progress on stderr: a redrawn bar on a terminal, plain lines
/// (every 10 %) when redirected to a log. Messages become plain text. Main thread.
class TerminalProgress
{
public:
    TerminalProgress();
    void setPercent(int percent);
    void setLabel(const QString& label);
    void printMessage(const QString& title, const QString& message, const QString& details);
    /// Ends the bar's line.
    void finish();
    /// Rich text as plain text: tags dropped, "<br>" as line breaks, entities decoded.
    static QString plainText(const QString& richText);

private:
    void draw();
    bool m_interactive;
    int m_percent = -1;
    int m_lastLogged = -10;
    QString m_label;
};

} // namespace zarvi
