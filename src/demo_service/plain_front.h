#pragma once

#include <functional>

#include "demo_service/answer.h"
#include "demo_service/behaviour.h"
#include "demo_service/listener.h"
#include "demo_service/request_log.h"

namespace corvane::demo {

struct PlainAnswer {
    Answer answer;
    Delivery delivery;
};

/// Serves HTTP without TLS: keeps what comes in and answers with what it is told.
class PlainFront {
  public:
    /// Called from several threads at once.
    using AnswerRequest = std::function<PlainAnswer(const ReceivedRequest&)>;

    PlainFront(AnswerRequest answerRequest, bool keepsRequests);

    /// Serves a listener's connections; valid as long as this front.
    Listener::Serve serve();

    RequestLog& log() { return log_; }

  private:
    void serveConnection(Socket socket, std::size_t connection);

    AnswerRequest answerRequest_;
    RequestLog log_;
};

}  // namespace corvane::demo
