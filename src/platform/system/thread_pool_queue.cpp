#include "platform/system/thread_pool_queue.h"

#include <sys/resource.h>
#include <unistd.h>

#include <condition_variable>
#include <csignal>
#include <deque>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

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
    std::map<std::thread::id, std::thread> handles;  ///< of all threads, until `stop` gives some of them up
    std::vector<std::thread> endedThreads;           ///< done with their tasks, and still to be joined
    std::size_t idleThreads = 0;
    bool isStopped = false;

    Task waitForTask(std::unique_lock<std::mutex>& lock);
    void run();
};

namespace {

// Where the service answers as fast as it is asked, all threads have work all the time. The main thread would
// get its share as one of many: windows would freeze, and answers pile up faster than they are stored.
void letMainThreadPassBy() {
    constexpr int lowestPriority = 19;
    // On Linux a priority belongs to a thread.
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), lowestPriority);
}

}  // namespace

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
    letMainThreadPassBy();
    std::unique_lock lock(mutex);
    while (Task task = waitForTask(lock)) {
        lock.unlock();
        task();
        task = nullptr;  // what it holds is released without the lock
        lock.lock();
    }
    // Libraries clean up after a thread when it ends, so it has to be joined before the process goes on to
    // its end.
    if (auto self = handles.extract(std::this_thread::get_id()))
        endedThreads.push_back(std::move(self.mapped()));
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

/// Not joinable when the system has no thread left.
std::thread startThread(const std::function<void()>& work) {
    const SignalBlocker blocker;
    try {
        return std::thread(work);
    } catch (const std::system_error&) {
        return {};
    }
}

void join(std::vector<std::thread>& threads) {
    for (std::thread& thread : threads)
        thread.join();
}

}  // namespace

ThreadPoolQueue::ThreadPoolQueue(ThreadPoolLimits limits) : state_(std::make_shared<State>(limits)) {}

ThreadPoolQueue::~ThreadPoolQueue() {
    stop(std::chrono::seconds(1));
}

void ThreadPoolQueue::async(Task task) {
    std::vector<std::thread> ended;
    {
        const std::lock_guard lock(state_->mutex);
        if (state_->isStopped)
            return;
        ended.swap(state_->endedThreads);
        state_->tasks.push_back(std::move(task));
        const bool needsThread = state_->tasks.size() > state_->idleThreads;
        if (needsThread && state_->threads < state_->limits.maximumThreads)
            addThread();
        state_->workOrStop.notify_one();
    }
    join(ended);
}

// With the lock held: the new thread waits for it, and finds itself in the list.
void ThreadPoolQueue::addThread() {
    std::thread thread = startThread([state = state_] { state->run(); });
    if (thread.joinable()) {
        const std::thread::id identifier = thread.get_id();
        state_->handles.emplace(identifier, std::move(thread));
        ++state_->threads;
    } else if (state_->threads == 0) {
        fatalError("no thread can be started");
    }
}

bool ThreadPoolQueue::stop(std::chrono::milliseconds limit) {
    std::deque<Task> dropped;
    std::vector<std::thread> ended;
    std::unique_lock lock(state_->mutex);
    state_->isStopped = true;
    dropped.swap(state_->tasks);
    state_->workOrStop.notify_all();
    const bool allEnded = state_->threadEnded.wait_for(lock, limit, [this] { return state_->threads == 0; });
    for (auto& [identifier, thread] : state_->handles)
        thread.detach();
    state_->handles.clear();
    ended.swap(state_->endedThreads);
    lock.unlock();
    join(ended);
    return allEnded;
}

std::size_t ThreadPoolQueue::threadCount() const {
    const std::lock_guard lock(state_->mutex);
    return state_->threads;
}

}  // namespace corvane
