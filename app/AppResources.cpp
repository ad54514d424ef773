#include "app/AppResources.h"

#include <QtGlobal>

// Q_INIT_RESOURCE must be used outside any namespace.
static void initZarviResources()
{
    Q_INIT_RESOURCE(zarvi_resources);
}

namespace zarvi {

void AppResources::ensureLoaded()
{
    static const bool loaded = (initZarviResources(), true);
    Q_UNUSED(loaded);
}

} // namespace zarvi
