#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "demo_service/demo_service.h"
#include "demo_service/openssl_pointers.h"

namespace corvane::demo {

struct TlsSetup {
    TlsContextPointer context;
    std::string caCertificate;  ///< PEM of the authority, also where the server's own certificate is of none
};

/// Makes authority, key and certificate, and the context that shows them. A certificate for the right host is
/// also for `hostName`, unless that is empty. Absent when OpenSSL fails.
std::optional<TlsSetup> makeTlsSetup(TlsVariant variant, std::string_view hostName);

}  // namespace corvane::demo
