#include "desktop/paced_action.h"

#include <utility>

namespace corvane {

PacedAction::PacedAction(std::chrono::milliseconds interval, std::function<void()> action) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.callOnTimeout([this, interval, action = std::move(action)] {
        nextTime_.setRemainingTime(interval);
        action();
    });
}

void PacedAction::request() {
    if (!timer_.isActive())
        timer_.start(static_cast<int>(nextTime_.remainingTime()));
}

}  // namespace corvane
