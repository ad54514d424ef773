#pragma once

#include <QStringList>

namespace zarvi {

/// `zarvi-cli demo OUT.orvel [--seed N]`: writes the synthetic demo recording
/// and prints where its parts are. Runs on the main thread.
class DemoCommand
{
public:
    static int run(const QStringList& arguments);
};

} // namespace zarvi
