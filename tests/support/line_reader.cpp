#include "support/line_reader.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>

#include "platform/fatal_error.h"

namespace corvane::test {

LineReader::LineReader() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        fatalError("cannot make a pipe");
    readEnd_ = FileDescriptor(ends[0]);
    writeEnd_ = FileDescriptor(ends[1]);
}

bool LineReader::waitFor(const std::string& text, std::chrono::milliseconds timeout) {
    return readUntil(readEnd_.number(), text, timeout, heard_);
}

bool readUntil(int descriptor, const std::string& text, std::chrono::milliseconds timeout,
               std::string& heard) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    pollfd waiting{.fd = descriptor, .events = POLLIN, .revents = 0};
    while (heard.find(text) == std::string::npos) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0 || poll(&waiting, 1, static_cast<int>(left.count())) == 0)
            return false;
        std::array<char, 4096> bytes{};
        const ssize_t count = read(descriptor, bytes.data(), bytes.size());
        if (count <= 0)
            return false;
        heard.append(bytes.data(), static_cast<std::size_t>(count));
    }
    return true;
}

}  // namespace corvane::test
