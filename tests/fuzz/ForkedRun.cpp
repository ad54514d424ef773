#include "fuzz/ForkedRun.h"

#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

// GCC says so with __SANITIZE_ADDRESS__, clang with __has_feature; GCC's own test must come
// first, since Qt's headers define __has_feature as 0 for compilers that lack it.
#if defined(__SANITIZE_ADDRESS__)
#define ZARVI_FUZZ_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZARVI_FUZZ_ADDRESS_SANITIZER
#endif
#endif
#ifdef ZARVI_FUZZ_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#endif

namespace zarvi::fuzz {

namespace {

#ifdef ZARVI_FUZZ_ADDRESS_SANITIZER
/// This program's path, as the sanitizer names it in its reports.
char program[PATH_MAX] = {};

void endIfLibraryFault(const char* report)
{
    if (ForkedRun::faultIsInLibrary(report, program))
        raise(SIGKILL);
}
#endif

[[noreturn]] void runChild(int pipeOut, const std::function<QByteArray()>& work)
{
    // The fuzzer would take an abort in the child for a finding of its own and save the
    // input; without a sanitizer's report there is no stack to tell whose it is.
    struct sigaction defaults = {};
    defaults.sa_handler = SIG_DFL;
    sigaction(SIGABRT, &defaults, nullptr);
    sigaction(SIGILL, &defaults, nullptr);
#ifdef ZARVI_FUZZ_ADDRESS_SANITIZER
    if (readlink("/proc/self/exe", program, sizeof program - 1) < 0)
        program[0] = '\0';
    __asan_set_error_report_callback(endIfLibraryFault);
#endif
    const QByteArray output = work();
    for (qsizetype written = 0; written < output.size();) {
        const ssize_t n = write(pipeOut, output.constData() + written, output.size() - written);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            _exit(2);
        written += n;
    }
    // _exit: the parent's files, its temporary folder among them, are its own to clean up.
    _exit(0);
}

/// Reads the child's output until it closes the pipe (it has ended) or the deadline passes.
/// False on the deadline.
bool readUntilEnd(int pipeIn, std::chrono::steady_clock::time_point deadline, QByteArray& output)
{
    char buffer[4096];
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return false;
        pollfd wait = {pipeIn, POLLIN, 0};
        const int ready = poll(&wait, 1, static_cast<int>(left.count()));
        if (ready < 0 && errno == EINTR)
            continue; // the fuzzer's own timer
        if (ready <= 0)
            return false; // past the deadline, or the wait itself failed: the child is stopped
        const ssize_t n = read(pipeIn, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return true;
        output.append(buffer, n);
    }
}

} // namespace

bool ForkedRun::faultIsInLibrary(std::string_view report, std::string_view program)
{
    // Clang links the sanitizer's runtime into the program without line tables, so its frames
    // (interceptors such as strdup among them) show the program's path where ours show a
    // source file; GCC's runtime is a library of its own, libasan.
    const std::string inRuntime = "(" + std::string(program) + "+0x";
    const auto passesCallOn = [&inRuntime](std::string_view frame) {
        const std::string_view passing[] = {inRuntime,    "__interceptor_", "__asan",   "__sanitizer",
                                            "libasan.so", "libc.so",        "/sysdeps/"};
        for (const std::string_view part : passing)
            if (frame.find(part) != std::string_view::npos)
                return true;
        return false;
    };
    const auto inLibrary = [](std::string_view frame) {
        return frame.find("libhdf5") != std::string_view::npos;
    };
    // A stack runs out wherever the deepest call happens to be: the overflow is the
    // library's only when no frame of ours recurses in the part of the stack shown.
    const bool wholeStack = report.find("stack-overflow") != std::string_view::npos;
    bool inStack = false;
    bool blamed = false;
    while (!report.empty()) {
        const std::size_t end = report.find('\n');
        const std::string_view line = report.substr(0, end);
        report = end == std::string_view::npos ? std::string_view() : report.substr(end + 1);
        const std::size_t first = line.find_first_not_of(' ');
        const bool frame = first != std::string_view::npos && line[first] == '#';
        if (!frame && inStack)
            break;
        inStack = frame;
        if (!frame || passesCallOn(line))
            continue;
        if (!inLibrary(line))
            return false;
        blamed = true;
        if (!wholeStack)
            break;
    }
    return blamed;
}

ForkedRunResult ForkedRun::run(const std::function<QByteArray()>& work, int timeoutMilliseconds)
{
    ForkedRunResult result;
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0)
        return result;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMilliseconds);
    const pid_t child = fork();
    if (child < 0) {
        close(fds[0]);
        close(fds[1]);
        return result;
    }
    if (child == 0) {
        close(fds[0]);
        runChild(fds[1], work);
    }
    close(fds[1]);
    const bool ended = readUntilEnd(fds[0], deadline, result.output);
    close(fds[0]);
    if (!ended)
        kill(child, SIGKILL);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (!ended) {
        result.end = ForkedRunEnd::TimedOut;
    } else if (WIFSIGNALED(status)) {
        result.end = ForkedRunEnd::Signalled;
        result.code = WTERMSIG(status);
    } else if (WEXITSTATUS(status) != 0) {
        result.end = ForkedRunEnd::Exited;
        result.code = WEXITSTATUS(status);
    } else {
        result.end = ForkedRunEnd::Finished;
    }
    if (result.end != ForkedRunEnd::Finished)
        result.output.clear();
    return result;
}

} // namespace zarvi::fuzz
