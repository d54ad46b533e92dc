#pragma once

#include <functional>
#include <mutex>
#include <vector>

#include "platform/http_client.h"

namespace corvane {

/// Answers from memory: keeps every request and lets a function answer it, on the asking thread.
class ScriptedHttpClient final : public HttpClient {
  public:
    using Responder = std::function<HttpAnswer(const HttpRequest&)>;

    /// The responder must bear calls from several threads when the client gets them.
    explicit ScriptedHttpClient(Responder responder) : responder_(std::move(responder)) {}

    HttpAnswer sendSynchronousRequest(const HttpRequest& request) override;

    /// A copy of the requests so far, in the order in which they came.
    std::vector<HttpRequest> requests() const;

  private:
    Responder responder_;
    mutable std::mutex mutex_;
    std::vector<HttpRequest> requests_;
};

}  // namespace corvane
