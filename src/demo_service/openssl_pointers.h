#pragma once

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

#include <memory>

namespace corvane::demo {

template <auto release>
struct Release {
    template <typename T>
    void operator()(T* object) const {
        release(object);
    }
};

using KeyPointer = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using CertificatePointer = std::unique_ptr<X509, Release<X509_free>>;
using ExtensionPointer = std::unique_ptr<X509_EXTENSION, Release<X509_EXTENSION_free>>;
using BioPointer = std::unique_ptr<BIO, Release<BIO_free_all>>;
using TlsContextPointer = std::unique_ptr<SSL_CTX, Release<SSL_CTX_free>>;
using TlsPointer = std::unique_ptr<SSL, Release<SSL_free>>;

}  // namespace corvane::demo
