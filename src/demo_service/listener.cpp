#include "demo_service/listener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>

#include <array>
#include <csignal>
#include <utility>

namespace corvane::demo {

namespace {

constexpr int kBacklog = 512;

/// Signals are the business of the program's own threads; SIGPIPE would end it when a client goes away.
void blockSignals() {
    sigset_t signals{};
    sigemptyset(&signals);
    for (const int number : {SIGPIPE, SIGTERM, SIGINT, SIGHUP, SIGCHLD, SIGUSR1, SIGUSR2, SIGALRM}) {
        sigaddset(&signals, number);
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

std::uint16_t portOf(int descriptor) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        return 0;
    }
    return ntohs(address.sin_port);
}

}  // namespace

std::unique_ptr<Listener> Listener::open(std::uint16_t port, Serve serve) {
    FileDescriptor descriptor(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!descriptor.isOpen()) {
        return nullptr;
    }
    const int on = 1;
    static_cast<void>(::setsockopt(descriptor.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::bind(descriptor.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(descriptor.get(), kBacklog) != 0) {
        return nullptr;
    }
    const std::uint16_t boundPort = portOf(descriptor.get());
    return std::unique_ptr<Listener>(new Listener(std::move(descriptor), boundPort, std::move(serve)));
}

Listener::Listener(FileDescriptor descriptor, std::uint16_t port, Serve serve)
    : descriptor_(std::move(descriptor)), port_(port), serve_(std::move(serve)) {
    acceptingThread_ = std::thread([this] { acceptConnections(); });
}

Listener::~Listener() {
    stop_.set();
    acceptingThread_.join();
    for (Worker& worker : workers_) {
        worker.thread.join();
    }
}

void Listener::acceptConnections() {
    blockSignals();
    while (!stop_.isSet()) {
        std::array<pollfd, 2> polled{pollfd{descriptor_.get(), POLLIN, 0},
                                     pollfd{stop_.descriptor(), POLLIN, 0}};
        static_cast<void>(::poll(polled.data(), polled.size(), -1));
        if (polled[0].revents == 0) {
            continue;
        }
        FileDescriptor connection(
            ::accept4(descriptor_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        joinFinishedWorkers();
        if (connection.isOpen()) {
            startWorker(Socket(std::move(connection), stop_));
        }
    }
}

void Listener::startWorker(Socket socket) {
    const std::size_t number = ++accepted_;
    const std::size_t open = ++open_;
    if (open > peak_) {
        peak_ = open;
    }
    Worker& worker = workers_.emplace_back();
    worker.thread = std::thread([this, &worker, number, taken = std::move(socket)]() mutable {
        blockSignals();
        serve_(std::move(taken), number);
        --open_;
        worker.isDone = true;
    });
}

void Listener::joinFinishedWorkers() {
    for (Worker& worker : workers_) {
        if (worker.isDone) {
            worker.thread.join();
        }
    }
    workers_.remove_if([](const Worker& worker) { return !worker.thread.joinable(); });
}

}  // namespace corvane::demo
