#pragma once

#include <QStringList>

namespace zarvi {

/// `zarvi-cli repair FILE --into COPY.orvel`: writes a repaired copy of a file that a
/// write killed half-way left unopenable, and never touches the file itself. Exit
/// status: 0 the copy opens, 1 failed (no copy is left), 2 usage. Main thread.
class RepairCommand
{
public:
    static int run(const QStringList& arguments);
};

} // namespace zarvi
