#pragma once

#include <QString>

#include <memory>

namespace zarvi {

class AbstractOperationView;

/// Makes the parameter view of an operation by its name: the GUI-side twin of
/// the operation registry. GUI thread.
class OperationViewFactory
{
public:
    /// Null for an operation that has no view.
    static std::unique_ptr<AbstractOperationView> create(const QString& operationName);
};

} // namespace zarvi
