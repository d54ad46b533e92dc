#pragma once

#include <QBasicTimer>
#include <QObject>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <vector>

#include "platform/main_queue.h"

namespace corvane {

/// The main queue on the Qt event loop. Its tasks run from the event loop of the thread that made it, also
/// from a nested one as long as that was not opened by one of its tasks. After a few milliseconds of tasks
/// the loop gets its turn for input and painting. An empty queue, or one that waits, wakes nobody up.
class QtMainQueue final : public QObject, public MainQueue {
  public:
    QtMainQueue() = default;
    ~QtMainQueue() override;

    void async(Task task) override;
    void asyncAfter(std::chrono::nanoseconds delay, Task task) override;
    void asyncAfterTurn(std::chrono::nanoseconds delay, Task task) override;

    /// No task is begun any more; one that runs goes on to its end. Main thread only.
    void stop();

    /// Destroys the tasks that wait. Main thread only.
    void dropTasks();

  protected:
    bool event(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

  private:
    using TimePoint = std::chrono::steady_clock::time_point;

    struct Entry {
        TimePoint dueTime;
        std::uint64_t number;
        Task task;
    };
    static bool isLater(const Entry& left, const Entry& right);

    void add(std::chrono::nanoseconds delay, Task task);
    bool isBusy() const;
    bool takeNextDue(Task& task);
    void runDueTasks();
    void arm();

    std::mutex mutex_;
    std::vector<Entry> heap_;  ///< the next task on top
    std::uint64_t nextNumber_ = 0;
    bool isWakeUpPosted_ = false;
    bool isRunningTask_ = false;  ///< changes on the main thread only

    // Main thread only.
    QBasicTimer timer_;
    bool isStopped_ = false;
};

}  // namespace corvane
