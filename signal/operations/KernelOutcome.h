#pragma once

#include <QString>

namespace zarvi {

/// How a signal kernel ended: completed, stopped because its Feedback asked it to,
/// or failed with a message for the operation's error list. A plain value, returned
/// by the kernels on the worker thread that ran them.
struct KernelOutcome
{
    enum class Status
    {
        Completed,
        Cancelled,
        Failed
    };

    Status status = Status::Completed;
    /// The message of a failure, empty otherwise.
    QString error;

    bool ok() const { return status == Status::Completed; }
    bool isCancelled() const { return status == Status::Cancelled; }
    bool isFailed() const { return status == Status::Failed; }

    static KernelOutcome completed() { return {}; }
    static KernelOutcome cancelled() { return {Status::Cancelled, {}}; }
    static KernelOutcome failed(const QString& message) { return {Status::Failed, message}; }
};

} // namespace zarvi
