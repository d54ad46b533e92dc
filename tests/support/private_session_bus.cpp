#include "support/private_session_bus.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <utility>

#include "platform/fatal_error.h"

namespace corvane::test {
namespace {

std::string configurationFor(const std::filesystem::path& folder) {
    return R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <keep_umask/>
  <listen>unix:path=)" +
           (folder / "bus").native() + R"(</listen>
  <auth>EXTERNAL</auth>
  <servicedir>)" +
           (folder / "services").native() + R"(</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";
}

// The bus writes its address once it listens.
std::string firstLineFrom(int descriptor) {
    std::string line;
    char character = 0;
    while (read(descriptor, &character, 1) == 1 && character != '\n')
        line += character;
    return line;
}

}  // namespace

PrivateSessionBus::PrivateSessionBus(Environment environment) : environment_(std::move(environment)) {
    std::filesystem::create_directories(folder_.path() / "services");
    writeFile(folder_.path() / "bus.conf", configurationFor(folder_.path()));
    start();
}

void PrivateSessionBus::start() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        fatalError("cannot make a pipe");
    const FileDescriptor readEnd(ends[0]);
    {
        const FileDescriptor writeEnd(ends[1]);
        ChildProcessOptions options;
        options.command = {"dbus-daemon", "--nofork", "--nopidfile",
                           "--config-file=" + (folder_.path() / "bus.conf").native(),
                           "--print-address=" + std::to_string(writeEnd.number())};
        options.environment = environment_;
        options.passedDescriptor = writeEnd.number();
        daemon_ = std::make_unique<ChildProcess>(options);
    }
    const std::string line = firstLineFrom(readEnd.number());
    if (line.empty())
        fatalError("dbus-daemon does not start");
    address_ = line.substr(0, line.find(','));  // without the bus's identity, so that it can be started again
}

void PrivateSessionBus::startAgain() {
    std::filesystem::remove(folder_.path() / "bus");
    start();
}

void PrivateSessionBus::addService(const std::string& name, const std::string& command) {
    writeFile(folder_.path() / "services" / (name + ".service"),
              "[D-BUS Service]\nName=" + name + "\nExec=" + command + '\n');
}

}  // namespace corvane::test
