#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/system/file_descriptor.h"

namespace corvane::test {

/// The whole environment of a process.
using Environment = std::map<std::string, std::string>;

/// The environment of this process.
Environment inheritedEnvironment();

struct ChildProcessOptions {
    std::vector<std::string> command;  ///< program and arguments; a program without "/" is looked up in PATH
    Environment environment = inheritedEnvironment();
    std::filesystem::path outputFile = "/dev/null";  ///< truncated; may be the same as errorFile
    std::filesystem::path errorFile = "/dev/null";
    int outputDescriptor = -1;  ///< instead of outputFile: an open descriptor, for example of a terminal
    int passedDescriptor = -1;  ///< stays open in the child under its number
};

/// A process that never outlives the test: killed by the destructor, and by the system if the test dies.
class ChildProcess {
  public:
    /// Starts it at once. A failure to do so ends the test program.
    explicit ChildProcess(const ChildProcessOptions& options);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t id() const { return id_; }
    void sendSignal(int signal) const;

    /// The exit status, or minus the number of the signal that ended it; absent when it still runs after that
    /// time.
    std::optional<int> waitForExit(std::chrono::milliseconds timeout);
    bool isRunning() { return !waitForExit(std::chrono::milliseconds(0)); }

  private:
    pid_t id_ = -1;
    FileDescriptor handle_;
    std::optional<int> status_;
};

}  // namespace corvane::test
