#include "app/plugins/DisplayedPaths.h"

#include "framework/DatasetDeletion.h"

#include <QVariant>
#include <QWidget>

#include <algorithm>

namespace zarvi {

namespace {

// The dynamic property of a display tab listing the data paths it shows.
constexpr const char* DisplayPathsProperty = "zarviDatapaths";

} // namespace

void DisplayedPaths::set(QWidget* display, const QStringList& paths)
{
    display->setProperty(DisplayPathsProperty, paths);
}

bool DisplayedPaths::anyUnder(const QWidget* display, const QStringList& paths)
{
    const QStringList shown = display->property(DisplayPathsProperty).toStringList();
    return std::any_of(shown.begin(), shown.end(), [&](const QString& p) {
        return std::any_of(paths.begin(), paths.end(),
                           [&](const QString& path) { return DatasetDeletion::isSameOrUnder(p, path); });
    });
}

} // namespace zarvi
