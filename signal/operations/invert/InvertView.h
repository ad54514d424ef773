#pragma once

#include "signal/SignalOperationView.h"

namespace zarvi {

/// Parameters of "Invert": the offset, from its declaration. GUI thread.
class InvertView : public SignalOperationView
{
    Q_OBJECT

public:
    explicit InvertView(QWidget* parent = nullptr);

protected:
    bool buildParameters(QVariantMap& parameters) override;

private:
    QWidget* m_offset;
};

} // namespace zarvi
