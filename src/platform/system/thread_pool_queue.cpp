#include "platform/system/thread_pool_queue.h"

#include <condition_variable>
#include <csignal>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/fatal_error.h"

namespace corvane {

/// Shared with the threads, because one whose task does not end may outlive the queue.
struct ThreadPoolQueue::State {
    explicit State(ThreadPoolLimits threadLimits) : limits(threadLimits) {}

    const ThreadPoolLimits limits;
    std::mutex mutex;
    std::condition_variable workOrStop;
    std::condition_variable threadEnded;
    std::deque<Task> tasks;
    std::size_t threads = 0;
    std::size_t idleThreads = 0;
    bool isStopped = false;

    Task waitForTask(std::unique_lock<std::mutex>& lock);
    void run();
};

/// Empty when the thread is to end. Called and left with the lock held.
Task ThreadPoolQueue::State::waitForTask(std::unique_lock<std::mutex>& lock) {
    ++idleThreads;
    workOrStop.wait_for(lock, limits.idleTime, [this] { return isStopped || !tasks.empty(); });
    --idleThreads;
    if (tasks.empty())
        return nullptr;
    Task task = std::move(tasks.front());
    tasks.pop_front();
    return task;
}

void ThreadPoolQueue::State::run() {
    std::unique_lock lock(mutex);
    while (Task task = waitForTask(lock)) {
        lock.unlock();
        task();
        task = nullptr;  // what it holds is released without the lock
        lock.lock();
    }
    --threads;
    threadEnded.notify_all();
}

namespace {

/// Threads started while it lives take no signals; those are the main thread's business.
class SignalBlocker {
  public:
    SignalBlocker() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &previousMask_);
    }
    ~SignalBlocker() { pthread_sigmask(SIG_SETMASK, &previousMask_, nullptr); }
    SignalBlocker(const SignalBlocker&) = delete;
    SignalBlocker& operator=(const SignalBlocker&) = delete;

  private:
    sigset_t previousMask_{};
};

bool startThread(const std::function<void()>& work) {
    const SignalBlocker blocker;
    try {
        std::thread(work).detach();
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

}  // namespace

ThreadPoolQueue::ThreadPoolQueue(ThreadPoolLimits limits) : state_(std::make_shared<State>(limits)) {}

ThreadPoolQueue::~ThreadPoolQueue() {
    stop(std::chrono::seconds(1));
}

void ThreadPoolQueue::async(Task task) {
    const std::lock_guard lock(state_->mutex);
    if (state_->isStopped)
        return;
    state_->tasks.push_back(std::move(task));
    const bool needsThread = state_->tasks.size() > state_->idleThreads;
    if (needsThread && state_->threads < state_->limits.maximumThreads) {
        if (startThread([state = state_] { state->run(); }))
            ++state_->threads;
        else if (state_->threads == 0)
            fatalError("no thread can be started");
    }
    state_->workOrStop.notify_one();
}

bool ThreadPoolQueue::stop(std::chrono::milliseconds limit) {
    std::deque<Task> dropped;
    std::unique_lock lock(state_->mutex);
    state_->isStopped = true;
    dropped.swap(state_->tasks);
    state_->workOrStop.notify_all();
    return state_->threadEnded.wait_for(lock, limit, [this] { return state_->threads == 0; });
}

std::size_t ThreadPoolQueue::threadCount() const {
    const std::lock_guard lock(state_->mutex);
    return state_->threads;
}

}  // namespace corvane
