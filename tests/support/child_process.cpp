#include "support/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <string_view>

#include "platform/fatal_error.h"

namespace corvane::test {
namespace {

constexpr int exitStatusOfFailedStart = 127;

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> linesOf(const Environment& environment) {
    std::vector<std::string> lines;
    for (const auto& [name, value] : environment)
        lines.push_back(name + '=' + value);
    return lines;
}

// Between fork and exec: nothing here may allocate.
[[noreturn]] void becomeProgram(char* const* arguments, char* const* environment, int output, int error,
                                int passed, pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent)
        _exit(exitStatusOfFailedStart);
    const int input = open("/dev/null", O_RDONLY);
    if (dup2(input, STDIN_FILENO) < 0 || dup2(output, STDOUT_FILENO) < 0 || dup2(error, STDERR_FILENO) < 0)
        _exit(exitStatusOfFailedStart);
    if (passed >= 0)
        fcntl(passed, F_SETFD, 0);
    execvpe(arguments[0], arguments, environment);
    _exit(exitStatusOfFailedStart);
}

FileDescriptor openForAppending(const std::filesystem::path& path) {
    FileDescriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600));
    if (!file.isOpen())
        fatalError("cannot open " + path.native());
    return file;
}

}  // namespace

Environment inheritedEnvironment() {
    Environment environment;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view line = *entry;
        const std::size_t equals = line.find('=');
        if (equals != std::string_view::npos)
            environment.emplace(line.substr(0, equals), line.substr(equals + 1));
    }
    return environment;
}

ChildProcess::ChildProcess(const ChildProcessOptions& options) {
    std::vector<std::string> command = options.command;
    std::vector<std::string> lines = linesOf(options.environment);
    const std::vector<char*> arguments = pointersTo(command);
    const std::vector<char*> environment = pointersTo(lines);
    const FileDescriptor output = openForAppending(options.outputFile);
    const FileDescriptor error = openForAppending(options.errorFile);
    const int outputNumber = options.outputDescriptor >= 0 ? options.outputDescriptor : output.number();

    const pid_t parent = getpid();
    id_ = fork();
    if (id_ == 0)
        becomeProgram(arguments.data(), environment.data(), outputNumber, error.number(),
                      options.passedDescriptor, parent);
    if (id_ < 0)
        fatalError("cannot start " + options.command.front());
    handle_ = FileDescriptor(static_cast<int>(syscall(SYS_pidfd_open, id_, 0)));
    if (!handle_.isOpen())
        fatalError("cannot watch " + options.command.front());
}

ChildProcess::~ChildProcess() {
    if (status_)
        return;
    kill(id_, SIGKILL);
    waitpid(id_, nullptr, 0);
}

void ChildProcess::sendSignal(int signal) const {
    if (!status_)
        kill(id_, signal);
}

std::optional<int> ChildProcess::waitForExit(std::chrono::milliseconds timeout) {
    if (status_)
        return status_;
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    pollfd waiting{.fd = handle_.number(), .events = POLLIN, .revents = 0};
    while (true) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        const int ready =
            poll(&waiting, 1, static_cast<int>(std::max(left.count(), decltype(left.count()){0})));
        if (ready == 0)
            return std::nullopt;
        if (ready > 0)
            break;
        if (errno != EINTR)
            fatalError("cannot wait for a child process");
    }
    int status = 0;
    waitpid(id_, &status, 0);
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return status_;
}

}  // namespace corvane::test
