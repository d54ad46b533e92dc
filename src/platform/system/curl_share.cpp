#include "platform/system/curl_share.h"

#include "platform/fatal_error.h"

namespace corvane {
namespace {

CURLSH* makeShare() {
    static const CURLcode initialized = curl_global_init(CURL_GLOBAL_DEFAULT);
    CURLSH* const share = initialized == CURLE_OK ? curl_share_init() : nullptr;
    if (share == nullptr)
        fatalError("the HTTP library cannot be initialized");
    return share;
}

}  // namespace

CurlShare::CurlShare() : share_(makeShare()) {
    curl_share_setopt(share_, CURLSHOPT_USERDATA, this);
    curl_share_setopt(share_, CURLSHOPT_LOCKFUNC, &CurlShare::lock);
    curl_share_setopt(share_, CURLSHOPT_UNLOCKFUNC, &CurlShare::unlock);
    curl_share_setopt(share_, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
    curl_share_setopt(share_, CURLSHOPT_SHARE, CURL_LOCK_DATA_DNS);
}

CurlShare::~CurlShare() {
    curl_share_cleanup(share_);
}

void CurlShare::lock(CURL* /*handle*/, curl_lock_data data, curl_lock_access /*access*/, void* self) {
    static_cast<CurlShare*>(self)->mutexes_[static_cast<std::size_t>(data)].lock();
}

void CurlShare::unlock(CURL* /*handle*/, curl_lock_data data, void* self) {
    static_cast<CurlShare*>(self)->mutexes_[static_cast<std::size_t>(data)].unlock();
}

}  // namespace corvane
