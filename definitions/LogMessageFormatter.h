#pragma once

#include <QString>

namespace zarvi {

/// Prepares texts for an operation's progress log and message boxes: errors in
/// orange, warnings in blue (an error wins when a text holds both), no trailing
/// "<br>". Pure functions, safe from any thread.
class LogMessageFormatter
{
public:
    /// Colours a log line: drops one trailing "<br>", then wraps it by level.
    static QString colorize(const QString& text);
    /// The process-side formatting: line breaks become "<br>", then colorize().
    static QString formatProcessMessage(const QString& text);
};

} // namespace zarvi
