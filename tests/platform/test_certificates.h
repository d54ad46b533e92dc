#pragma once

#include <openssl/ssl.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace corvane::test {

using KeyPointer = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using CertificatePointer = std::unique_ptr<X509, decltype(&X509_free)>;

/// A certificate with its private key.
struct Identity {
    KeyPointer key{nullptr, EVP_PKEY_free};
    CertificatePointer certificate{nullptr, X509_free};

    /// The certificate as the text of a PEM file.
    std::string pem() const;
};

/// A certificate that may sign others.
Identity makeAuthority(const std::string& name);

struct ServerCertificateWishes {
    std::vector<std::string> dnsNames{"localhost"};
    std::vector<std::string> addresses{"127.0.0.1"};
    std::chrono::seconds validFrom{-3600};  ///< from now
    std::chrono::seconds validTo{3600};     ///< from now
};

/// Signed by the authority, or by itself where there is none.
Identity makeServerIdentity(const Identity* authority, const ServerCertificateWishes& wishes = {});

}  // namespace corvane::test
