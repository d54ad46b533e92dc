#pragma once

#include <string_view>

namespace corvane {

/// The system log. May be used on any thread. One call is one line: line breaks in the text do not start a
/// new one.
class Log {
  public:
    virtual ~Log() = default;

    virtual void log(std::string_view text) = 0;
};

}  // namespace corvane
