#pragma once

#include "framework/OperationDialog.h"

namespace zarvi {

/// The dialog the signal operations open in. GUI thread.
class SignalOperationDialog : public OperationDialog
{
    Q_OBJECT

public:
    using OperationDialog::OperationDialog;
};

} // namespace zarvi
