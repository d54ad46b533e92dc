#pragma once

#include <string>
#include <vector>

namespace corvane::test {

/// Lets system calls on files fail that the product's own code makes: the test program is linked so that they
/// come through here (see CMakeLists.txt). One at a time, on one thread.
class SystemCallFaults {
  public:
    enum class Extent { One, AllFrom };

    /// From now on the call with that number, counted from 0, fails with `error`; or all from that one on.
    SystemCallFaults(int failingCall, int error, Extent extent);
    ~SystemCallFaults();

    SystemCallFaults(const SystemCallFaults&) = delete;
    SystemCallFaults& operator=(const SystemCallFaults&) = delete;

    /// Whether the failing call has come.
    bool hasFailed() const;
    /// The names of the calls so far.
    const std::vector<std::string>& calls() const;

    /// For the wrapped calls: whether this one fails; errno is set then.
    static bool failsNow(const char* name);

  private:
    int failingCall_;
    int error_;
    Extent extent_;
    std::vector<std::string> calls_;
};

}  // namespace corvane::test
