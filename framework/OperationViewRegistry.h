#pragma once

#include <QString>

#include <functional>
#include <map>
#include <memory>

namespace zarvi {

class AbstractOperationView;

/// Makes the parameter view of an operation by its name: the GUI-side twin of the
/// operation registry, filled by each family's view registration file at start-up.
/// GUI thread.
class OperationViewRegistry
{
public:
    using Maker = std::function<std::unique_ptr<AbstractOperationView>()>;

    static OperationViewRegistry& instance();

    void add(const QString& operationName, Maker maker);
    /// Null for an operation that has no view.
    std::unique_ptr<AbstractOperationView> create(const QString& operationName) const;

private:
    OperationViewRegistry() = default;
    std::map<QString, Maker> m_makers;
};

} // namespace zarvi
