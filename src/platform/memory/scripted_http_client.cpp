#include "platform/memory/scripted_http_client.h"

namespace corvane {

HttpAnswer ScriptedHttpClient::sendSynchronousRequest(const HttpRequest& request) {
    {
        const std::lock_guard lock(mutex_);
        requests_.push_back(request);
    }
    return responder_(request);
}

std::vector<HttpRequest> ScriptedHttpClient::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

}  // namespace corvane
