#pragma once

#include <chrono>
#include <string>

#include "platform/system/file_descriptor.h"

namespace corvane::test {

/// A pipe whose write end is given to a child, to hear from it.
class LineReader {
  public:
    LineReader();

    /// For the child; close it here once the child has it.
    int writeEnd() const { return writeEnd_.number(); }
    void closeWriteEnd() { writeEnd_ = FileDescriptor(); }

    /// Reads until the text was said; false when the time has passed, or nobody can say anything any more.
    bool waitFor(const std::string& text, std::chrono::milliseconds timeout);

    const std::string& heard() const { return heard_; }

  private:
    FileDescriptor readEnd_;
    FileDescriptor writeEnd_;
    std::string heard_;
};

/// Reads from the descriptor, adding to `heard`, until `text` is in it; as above.
bool readUntil(int descriptor, const std::string& text, std::chrono::milliseconds timeout,
               std::string& heard);

}  // namespace corvane::test
