#pragma once

#include <QByteArray>

#include <functional>
#include <string_view>

namespace zarvi::fuzz {

/// How a forked run ended.
enum class ForkedRunEnd
{
    Finished,  ///< the work returned and the child exited normally
    Signalled, ///< a signal ended the child: a fault or an abort, or a fault of the library
    TimedOut,  ///< the child ran past its time and was killed
    Exited,    ///< the child exited with a non-zero status: a sanitizer's report, printed above
    NotStarted ///< no child could be started
};

struct ForkedRunResult
{
    ForkedRunEnd end = ForkedRunEnd::NotStarted;
    /// The exit status for Exited, the signal for Signalled.
    int code = 0;
    /// What the work returned, for Finished.
    QByteArray output;
};

/// Runs work that reads through the HDF5 library in a forked child with a time limit, the
/// way the application runs its file check in a child process: a crash or a hang of the
/// library ends the child, not the fuzzer. Under AddressSanitizer a fault is attributed by
/// the stack of its report: one the library made ends the child by SIGKILL (the application
/// sees its check crash), one in our code ends it with the sanitizer's exit status, as a
/// finding. An abort ends the child by its signal. Called from the fuzzing thread, which it
/// blocks until the child has ended.
class ForkedRun
{
public:
    static ForkedRunResult run(const std::function<QByteArray()>& work, int timeoutMilliseconds);

    /// True when the first stack of a sanitizer's report, past the sanitizer's runtime in
    /// `program` (the running program's path) and the C library, which only pass a call on,
    /// starts in the HDF5 library; for a stack overflow, when every frame of it shown lies there.
    static bool faultIsInLibrary(std::string_view report, std::string_view program);
};

} // namespace zarvi::fuzz
