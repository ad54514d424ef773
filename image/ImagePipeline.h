#pragma once

#include "framework/AbstractPipeline.h"

namespace zarvi {

/// The operations of 2-D image stacks. GUI thread.
class ImagePipeline : public AbstractPipeline
{
    Q_OBJECT

public:
    explicit ImagePipeline(QWidget* parent = nullptr) : AbstractPipeline(OperationFamily::Image, parent)
    {
        buildOperationList();
    }
};

} // namespace zarvi
