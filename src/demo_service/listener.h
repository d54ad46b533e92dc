#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <thread>

#include "demo_service/socket.h"
#include "demo_service/stop_signal.h"

namespace corvane::demo {

/// Accepts connections on 127.0.0.1 and serves each on a thread of its own.
class Listener {
  public:
    /// Serves one connection; the number counts connections from 1. Must return soon after the stop signal,
    /// which the socket's waits see to.
    using Serve = std::function<void(Socket socket, std::size_t connection)>;

    /// Null when the port is taken; 0 asks for any free one.
    static std::unique_ptr<Listener> open(std::uint16_t port, Serve serve);

    /// Ends all connections and waits for their threads.
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    std::uint16_t port() const { return port_; }
    std::size_t acceptedConnections() const { return accepted_; }
    std::size_t openConnections() const { return open_; }
    std::size_t peakOpenConnections() const { return peak_; }

  private:
    struct Worker {
        std::thread thread;
        std::atomic<bool> isDone = false;
    };

    Listener(FileDescriptor descriptor, std::uint16_t port, Serve serve);

    void acceptConnections();
    void startWorker(Socket socket);
    void joinFinishedWorkers();

    FileDescriptor descriptor_;
    std::uint16_t port_;
    Serve serve_;
    StopSignal stop_;
    std::atomic<std::size_t> accepted_ = 0;
    std::atomic<std::size_t> open_ = 0;
    std::atomic<std::size_t> peak_ = 0;
    std::list<Worker> workers_;  // of the accepting thread, until that has ended
    std::thread acceptingThread_;
};

}  // namespace corvane::demo
