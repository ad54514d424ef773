#pragma once

#include "framework/AbstractPipeline.h"

namespace zarvi {

/// The operations of volumetric image series. GUI thread.
class VoluImagesPipeline : public AbstractPipeline
{
    Q_OBJECT

public:
    explicit VoluImagesPipeline(QWidget* parent = nullptr) : AbstractPipeline(OperationFamily::VoluImages, parent)
    {
        buildOperationList();
    }
};

} // namespace zarvi
