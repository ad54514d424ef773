#pragma once

#include "roi/NumberedRoiHandler.h"

namespace zarvi {

/// The cell ROIs drawn over an image stack, numbered, in yellow. GUI thread.
class CellsHandler : public NumberedRoiHandler
{
    Q_OBJECT

public:
    using NumberedRoiHandler::NumberedRoiHandler;

protected:
    QColor roiColor() const override { return QColor(255, 214, 0); }
};

} // namespace zarvi
