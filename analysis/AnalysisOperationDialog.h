#pragma once

#include "framework/OperationDialog.h"

namespace zarvi {

/// The dialog the single-file analyses open in. GUI thread.
class AnalysisOperationDialog : public OperationDialog
{
    Q_OBJECT

public:
    using OperationDialog::OperationDialog;
};

} // namespace zarvi
