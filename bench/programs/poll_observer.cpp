// Linked into a program, notes for how long its main thread is away from poll(), which is how long input and
// painting may have to wait. CORVANE_BENCH_STRETCHES names the file: a line for each stretch of at least a
// millisecond, with its begin on the monotonic clock, its length and the thread's CPU time in it, in
// milliseconds.

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

constexpr double shortestStretch = 1.0;
constexpr std::size_t kernelSignalSetSize = 8;

double milliseconds(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

class Stretches {
  public:
    void begin() {
        begin_ = milliseconds(CLOCK_MONOTONIC);
        cpuAtBegin_ = milliseconds(CLOCK_THREAD_CPUTIME_ID);
    }

    void end() {
        const double length = milliseconds(CLOCK_MONOTONIC) - begin_;
        if (file_ < 0 || begin_ <= 0 || length < shortestStretch)
            return;
        dprintf(file_, "%.3f %.3f %.3f\n", begin_, length,
                milliseconds(CLOCK_THREAD_CPUTIME_ID) - cpuAtBegin_);
    }

  private:
    static int openFile() {
        const char* const path = std::getenv("CORVANE_BENCH_STRETCHES");
        return path == nullptr ? -1 : open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    }

    const int file_ = openFile();
    double begin_ = 0;
    double cpuAtBegin_ = 0;
};

int observedPoll(pollfd* descriptors, nfds_t count, const timespec* timeout, const sigset_t* signals) {
    const auto wait = [&] {
        timespec rest = timeout == nullptr ? timespec{} : *timeout;
        return static_cast<int>(syscall(SYS_ppoll, descriptors, count, timeout == nullptr ? nullptr : &rest,
                                        signals, kernelSignalSetSize));
    };
    if (gettid() != getpid())
        return wait();
    static Stretches stretches;
    stretches.end();
    const int result = wait();
    stretches.begin();
    return result;
}

}  // namespace

extern "C" int poll(pollfd* descriptors, nfds_t count, int timeout) {
    constexpr int millisecondsOfSecond = 1000;
    const timespec time{timeout / millisecondsOfSecond, timeout % millisecondsOfSecond * 1'000'000L};
    return observedPoll(descriptors, count, timeout < 0 ? nullptr : &time, nullptr);
}

extern "C" int ppoll(pollfd* descriptors, nfds_t count, const timespec* timeout, const sigset_t* signals) {
    return observedPoll(descriptors, count, timeout, signals);
}
