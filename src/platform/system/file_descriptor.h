#pragma once

#include <unistd.h>

#include <utility>

namespace corvane {

/// Owns a file descriptor and closes it.
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~FileDescriptor() {
        if (isOpen())
            ::close(number_);
    }

    int number() const { return number_; }
    bool isOpen() const { return number_ >= 0; }

  private:
    int number_ = -1;
};

}  // namespace corvane
