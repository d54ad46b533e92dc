#pragma once

#include <cstddef>

namespace corvane {

/// What reading one file may cost at most. The objects of a property list can be shared, overlap and form
/// loops, so that a few hundred bytes can stand for any amount of content; whoever reads them pays for each
/// byte and each step out of one budget and gives up when it is spent.
class ReadBudget {
  public:
    explicit ReadBudget(std::size_t units) : left_(units) {}

    /// False when there is not that much left; from then on always.
    [[nodiscard]] bool spend(std::size_t units) {
        if (units > left_) {
            left_ = 0;
            exhausted_ = true;
        }
        if (exhausted_)
            return false;
        left_ -= units;
        return true;
    }

    /// True once something was refused: what has been read may then lack parts.
    bool isExhausted() const { return exhausted_; }

  private:
    std::size_t left_;
    bool exhausted_ = false;
};

}  // namespace corvane
