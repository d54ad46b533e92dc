#pragma once

#include <atomic>
#include <cstddef>
#include <vector>

#include "platform/bytes.h"

namespace corvane {

/// What several holders may take in memory together. Any thread.
class VolumeBudget {
  public:
    explicit VolumeBudget(std::size_t bytes) : left_(bytes) {}

    VolumeBudget(const VolumeBudget&) = delete;
    VolumeBudget& operator=(const VolumeBudget&) = delete;

    /// False, and nothing taken, when there is not that much left.
    [[nodiscard]] bool take(std::size_t bytes) {
        std::size_t left = left_;
        do {
            if (bytes > left)
                return false;
        } while (!left_.compare_exchange_weak(left, left - bytes));
        return true;
    }
    void giveBack(std::size_t bytes) { left_ += bytes; }

    std::size_t left() const { return left_; }

  private:
    std::atomic<std::size_t> left_;
};

/// Collects the body of one answer after the other. It is kept in blocks until it is whole: one buffer that
/// grows would for moments be there twice, and an endless answer is dropped without ever being whole.
class AnswerBody {
  public:
    /// The budget, shared with the bodies of other requests, must outlive the object.
    explicit AnswerBody(VolumeBudget& budget) : budget_(budget) {}
    ~AnswerBody() { start(0); }

    AnswerBody(const AnswerBody&) = delete;
    AnswerBody& operator=(const AnswerBody&) = delete;

    /// Drops what is there.
    void start(std::size_t maximumSize);

    /// False when the body, or all unfinished ones together, would be too long.
    [[nodiscard]] bool append(ByteView bytes);

    /// The whole body, which counts against the budget no more.
    Bytes take();

  private:
    void appendToBlocks(ByteView bytes);

    VolumeBudget& budget_;
    std::size_t maximumSize_ = 0;
    std::size_t size_ = 0;
    std::vector<Bytes> blocks_;
};

}  // namespace corvane
