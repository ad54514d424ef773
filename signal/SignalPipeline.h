#pragma once

#include "framework/AbstractPipeline.h"
#include "signal/SignalOperationDialog.h"

namespace zarvi {

/// The operations of 1-D signals, opened in SignalOperationDialog. GUI thread.
class SignalPipeline : public AbstractPipeline
{
    Q_OBJECT

public:
    explicit SignalPipeline(QWidget* parent = nullptr) : AbstractPipeline(OperationFamily::Signal, parent)
    {
        buildOperationList();
    }

protected:
    OperationDialog* createDialog(AbstractOperationView* view) override
    {
        return new SignalOperationDialog(view, this);
    }
};

} // namespace zarvi
