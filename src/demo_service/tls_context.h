#pragma once

#include <optional>
#include <string>

#include "demo_service/demo_service.h"
#include "demo_service/openssl_pointers.h"

namespace corvane::demo {

struct TlsSetup {
    TlsContextPointer context;
    std::string caCertificate;  ///< PEM of the authority, also where the server's own certificate is of none
};

/// Makes authority, key and certificate, and the context that shows them. Absent when OpenSSL fails.
std::optional<TlsSetup> makeTlsSetup(TlsVariant variant);

}  // namespace corvane::demo
