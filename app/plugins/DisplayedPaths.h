#pragma once

#include <QStringList>

class QWidget;

namespace zarvi {

/// Which data paths a display tab of the view area shows, kept on the tab's widget,
/// so that the tabs of data that was deleted or renamed can be found and closed.
/// GUI thread.
class DisplayedPaths
{
public:
    static void set(QWidget* display, const QStringList& paths);
    /// True when the display shows data at or under one of `paths`.
    static bool anyUnder(const QWidget* display, const QStringList& paths);
};

} // namespace zarvi
