#pragma once

#include "framework/AbstractPipeline.h"
#include "image/ImageOperationDialog.h"

namespace zarvi {

/// The operations of 2-D image stacks, opened in ImageOperationDialog. GUI thread.
class ImagePipeline : public AbstractPipeline
{
    Q_OBJECT

public:
    explicit ImagePipeline(QWidget* parent = nullptr) : AbstractPipeline(OperationFamily::Image, parent)
    {
        buildOperationList();
    }

protected:
    OperationDialog* createDialog(AbstractOperationView* view) override
    {
        return new ImageOperationDialog(view, this);
    }
};

} // namespace zarvi
