#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/bytes.h"

/// Ends the process as a finding unless the condition holds; other than assert() in every build.
#define CORVANE_EXPECT(condition)                                                               \
    do {                                                                                        \
        if (!(condition)) {                                                                     \
            std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                       \
        }                                                                                       \
    } while (false)

/// Called for each input: by libFuzzer, or by replay_main.cpp for each file of a corpus.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace corvane::fuzz {

/// The input from its front: texts up to a line's end, then the rest.
class FuzzInput {
  public:
    FuzzInput(const std::uint8_t* data, std::size_t size) : left_(data, size) {}

    /// Up to the next line feed, which is left out; everything where there is none.
    std::string_view takeLine() {
        const std::string_view text = asText(left_);
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) {
            left_ = {};
            return text;
        }
        left_ = left_.subspan(end + 1);
        return text.substr(0, end);
    }

    bool isEmpty() const { return left_.empty(); }
    ByteView rest() const { return left_; }

  private:
    ByteView left_;
};

}  // namespace corvane::fuzz
