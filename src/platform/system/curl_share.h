#pragma once

#include <curl/curl.h>

#include <array>
#include <mutex>

namespace corvane {

/// What all connections of one client share: TLS sessions and looked-up addresses. May be used from several
/// threads at once; must outlive the handles that use it.
class CurlShare {
  public:
    /// Also prepares the library, once for the process.
    CurlShare();
    ~CurlShare();

    CurlShare(const CurlShare&) = delete;
    CurlShare& operator=(const CurlShare&) = delete;

    CURLSH* get() const { return share_; }

  private:
    static void lock(CURL* handle, curl_lock_data data, curl_lock_access access, void* self);
    static void unlock(CURL* handle, curl_lock_data data, void* self);

    std::array<std::mutex, CURL_LOCK_DATA_LAST> mutexes_;
    CURLSH* share_;
};

}  // namespace corvane
