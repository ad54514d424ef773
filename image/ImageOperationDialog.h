#pragma once

#include "framework/OperationDialog.h"

namespace zarvi {

/// The dialog the image operations open in. GUI thread.
class ImageOperationDialog : public OperationDialog
{
    Q_OBJECT

public:
    using OperationDialog::OperationDialog;
};

} // namespace zarvi
