#include "roi/ZonesHandler.h"

#include "definitions/FileDefinitions.h"
#include "roi/AbstractROI.h"

namespace zarvi {

void ZonesHandler::nameRoi(AbstractROI& roi) const
{
    roi.setName(FileDefinitions::ZonePattern.arg(roi.number()));
}

} // namespace zarvi
