#pragma once

#include <QStringList>

namespace zarvi {

/// `zarvi-cli info FILE`: classification with its messages, root attributes and
/// the whole tree with shapes, element types, chunking and attributes. Exits 1
/// for a file the application would refuse to open. Runs on the main thread.
class InfoCommand
{
public:
    static int run(const QStringList& arguments);
};

} // namespace zarvi
