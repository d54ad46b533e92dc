#include "platform/system/standard_error_log.h"

#include <fmt/format.h>
#include <unistd.h>
#include <utf8.h>
#include <utf8/unchecked.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <iterator>
#include <string>

namespace corvane {
namespace {

std::string localTimeText() {
    const auto now = std::chrono::system_clock::now();
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    std::tm local{};
    localtime_r(&seconds, &local);
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}.{:03}", local.tm_year + 1900, local.tm_mon + 1,
                       local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec, milliseconds);
}

/// Control characters of ASCII and Latin-1, and Unicode's own line and paragraph separators.
bool isControl(std::uint32_t character) {
    return character < 0x20 || (character >= 0x7f && character < 0xa0) || character == 0x2028 ||
           character == 0x2029;
}

void appendEscaped(std::string& line, std::uint32_t character) {
    if (character == '\n')
        line += "\\n";
    else if (character == '\r')
        line += "\\r";
    else if (character == '\t')
        line += "\\t";
    else
        fmt::format_to(std::back_inserter(line), "\\u{:04x}", character);
}

void appendValidText(std::string& line, std::string_view text) {
    const char* position = text.data();
    const char* const end = position + text.size();
    while (position != end) {
        const char* const start = position;
        const std::uint32_t character = utf8::unchecked::next(position);
        if (isControl(character))
            appendEscaped(line, character);
        else
            line.append(start, position);
    }
}

/// The text with everything spelled out that would break the line, or the terminal that shows it.
void appendVisible(std::string& line, std::string_view text) {
    while (!text.empty()) {
        const char* const invalid = utf8::find_invalid(text.data(), text.data() + text.size());
        const auto validLength = static_cast<std::size_t>(invalid - text.data());
        appendValidText(line, text.substr(0, validLength));
        text.remove_prefix(validLength);
        if (text.empty())
            return;
        fmt::format_to(std::back_inserter(line), "\\x{:02x}", static_cast<unsigned char>(text.front()));
        text.remove_prefix(1);
    }
}

}  // namespace

void StandardErrorLog::log(std::string_view text) {
    std::string line = fmt::format("{} corvane[{}] ", localTimeText(), getpid());
    line.reserve(line.size() + text.size() + 1);
    appendVisible(line, text);
    line += '\n';

    std::string_view rest = line;
    while (!rest.empty()) {
        const ssize_t written = write(STDERR_FILENO, rest.data(), rest.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;  // there is no other place to tell it
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
}

}  // namespace corvane
