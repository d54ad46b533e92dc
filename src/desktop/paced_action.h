#pragma once

#include <QDeadlineTimer>
#include <QTimer>
#include <chrono>
#include <functional>

namespace corvane {

/// Runs an action from the event loop after it was asked for: once for all requests of a turn, and once in an
/// interval however many there are. The last request is never lost. Main thread only.
class PacedAction {
  public:
    PacedAction(std::chrono::milliseconds interval, std::function<void()> action);

    void request();

  private:
    QTimer timer_;
    QDeadlineTimer nextTime_;
};

}  // namespace corvane
