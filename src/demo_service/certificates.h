#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "demo_service/openssl_pointers.h"

namespace corvane::demo {

struct Identity {
    KeyPointer key;
    CertificatePointer certificate;
};

struct LeafDescription {
    std::string_view commonName;
    std::string_view
        alternativeNames;    ///< as OpenSSL's configuration writes them: "DNS:localhost,IP:127.0.0.1"
    int validFromDays = -1;  ///< from now
    int validUntilDays = 30;
};

/// A new authority with a key of its own; absent when OpenSSL fails.
std::optional<Identity> makeAuthority();

/// A server's identity, signed by the authority.
std::optional<Identity> makeLeaf(const LeafDescription& description, const Identity& authority);

/// A server's identity, signed by itself.
std::optional<Identity> makeSelfSignedLeaf(const LeafDescription& description);

/// The certificate as PEM; empty when OpenSSL fails.
std::string pemOf(X509& certificate);

}  // namespace corvane::demo
