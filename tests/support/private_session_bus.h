#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace corvane::test {

/// A session bus of the test's own, with a configuration and a socket of its own: nothing of the user's
/// session is reached or changed. Ends with the object.
class PrivateSessionBus {
  public:
    /// Programs that the bus starts get that environment, and the bus's address. A failure to start the bus
    /// ends the test program.
    explicit PrivateSessionBus(Environment environment = inheritedEnvironment());

    const std::string& address() const { return address_; }

    /// Lets the bus start `command`, with blanks between its words, for whoever asks for `name`.
    void addService(const std::string& name, const std::string& command);

    /// Ends the bus at once, and with it every connection.
    void end() { daemon_.reset(); }

    /// Starts it again at the same address.
    void startAgain();

  private:
    void start();

    TemporaryFolder folder_;
    Environment environment_;
    std::unique_ptr<ChildProcess> daemon_;
    std::string address_;
};

}  // namespace corvane::test
