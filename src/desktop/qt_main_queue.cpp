#include "desktop/qt_main_queue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimerEvent>
#include <algorithm>
#include <utility>

namespace corvane {

namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using std::chrono::steady_clock;

/// How long tasks run before input and painting get their turn.
constexpr milliseconds timeBudget{8};
/// Longer delays are reached in several steps; timers count milliseconds in an int.
constexpr milliseconds longestTimer{60 * 60 * 1000};
/// Keeps the sum with the current time within the clock's range.
constexpr std::chrono::hours longestDelay{24 * 365 * 100};

QEvent::Type wakeUpEvent() {
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

}  // namespace

QtMainQueue::~QtMainQueue() {
    dropTasks();
}

bool QtMainQueue::isLater(const Entry& left, const Entry& right) {
    return std::pair(left.dueTime, left.number) > std::pair(right.dueTime, right.number);
}

void QtMainQueue::async(Task task) {
    asyncAfter(nanoseconds{0}, std::move(task));
}

void QtMainQueue::asyncAfter(nanoseconds delay, Task task) {
    const std::lock_guard lock(mutex_);
    add(delay, std::move(task));
}

void QtMainQueue::asyncAfterTurn(nanoseconds delay, Task task) {
    {
        const std::lock_guard lock(mutex_);
        if (!isBusy()) {
            add(delay, std::move(task));
            return;
        }
    }
    MainQueue::asyncAfterTurn(delay, std::move(task));
}

// With the lock held.
bool QtMainQueue::isBusy() const {
    return isRunningTask_ || (!heap_.empty() && heap_.front().dueTime <= steady_clock::now());
}

// With the lock held.
void QtMainQueue::add(nanoseconds delay, Task task) {
    const nanoseconds boundedDelay = std::clamp<nanoseconds>(delay, nanoseconds{0}, longestDelay);
    const std::uint64_t number = nextNumber_++;
    heap_.push_back({steady_clock::now() + boundedDelay, number, std::move(task)});
    std::push_heap(heap_.begin(), heap_.end(), isLater);
    const bool isNext = heap_.front().number == number;
    if (isNext && !std::exchange(isWakeUpPosted_, true))
        QCoreApplication::postEvent(this, new QEvent(wakeUpEvent()));
}

void QtMainQueue::stop() {
    isStopped_ = true;
    timer_.stop();
}

void QtMainQueue::dropTasks() {
    std::vector<Entry> dropped;
    {
        const std::lock_guard lock(mutex_);
        dropped.swap(heap_);
    }
    // Destroying a task may add another one, so it happens outside the lock.
}

bool QtMainQueue::event(QEvent* event) {
    if (event->type() != wakeUpEvent())
        return QObject::event(event);
    runDueTasks();
    return true;
}

void QtMainQueue::timerEvent(QTimerEvent* event) {
    if (event->timerId() == timer_.timerId())
        runDueTasks();
}

void QtMainQueue::runDueTasks() {
    if (isRunningTask_) {
        timer_.stop();  // armed again when the running task has ended
        return;
    }
    const TimePoint endOfTurn = steady_clock::now() + timeBudget;
    Task task;
    while (!isStopped_ && takeNextDue(task)) {
        task();
        task = nullptr;
        if (steady_clock::now() >= endOfTurn)
            break;
    }
    arm();
}

bool QtMainQueue::takeNextDue(Task& task) {
    const std::lock_guard lock(mutex_);
    isRunningTask_ = !heap_.empty() && heap_.front().dueTime <= steady_clock::now();
    if (!isRunningTask_)
        return false;
    std::pop_heap(heap_.begin(), heap_.end(), isLater);
    task = std::move(heap_.back().task);
    heap_.pop_back();
    return true;
}

void QtMainQueue::arm() {
    const std::lock_guard lock(mutex_);
    isWakeUpPosted_ = false;
    isRunningTask_ = false;
    if (isStopped_ || heap_.empty()) {
        timer_.stop();
        return;
    }
    const nanoseconds untilDue = heap_.front().dueTime - steady_clock::now();
    const auto wait = std::clamp(std::chrono::ceil<milliseconds>(untilDue), milliseconds{0}, longestTimer);
    timer_.start(static_cast<int>(wait.count()), Qt::PreciseTimer, this);
}

}  // namespace corvane
