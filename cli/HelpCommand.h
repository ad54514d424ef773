#pragma once

#include <QStringList>

namespace zarvi {

/// `zarvi-cli ops` and `zarvi-cli help NAME`: what the operation declarations say,
/// printed for people writing parameter files. Main thread.
class HelpCommand
{
public:
    /// Every operation, by family.
    static int listOperations();
    /// One operation: what it does, its parameters (kind, unit, default, allowed
    /// values, required or optional, tooltip) and what it writes.
    static int describe(const QStringList& arguments);
};

} // namespace zarvi
