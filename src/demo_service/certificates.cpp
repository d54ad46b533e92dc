#include "demo_service/certificates.h"

#include <openssl/bn.h>
#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <array>
#include <utility>

namespace corvane::demo {

namespace {

constexpr long kSecondsOfDay = 86400;

bool addExtension(X509& certificate, X509& issuer, int id, const std::string& value) {
    X509V3_CTX context{};
    X509V3_set_ctx(&context, &issuer, &certificate, nullptr, nullptr, 0);
    const ExtensionPointer extension(X509V3_EXT_conf_nid(nullptr, &context, id, value.c_str()));
    return extension && X509_add_ext(&certificate, extension.get(), -1) == 1;
}

bool setRandomSerialNumber(X509& certificate) {
    std::array<unsigned char, 8> random{};
    if (RAND_bytes(random.data(), static_cast<int>(random.size())) != 1) {
        return false;
    }
    std::uint64_t number = 0;
    for (const unsigned char byte : random) {
        number = number << 8U | byte;
    }
    return ASN1_INTEGER_set_uint64(X509_get_serialNumber(&certificate), number >> 1U) == 1;
}

bool setName(X509_NAME* name, std::string_view commonName) {
    return X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8,
                                      reinterpret_cast<const unsigned char*>(commonName.data()),
                                      static_cast<int>(commonName.size()), -1, 0) == 1;
}

/// A certificate for a new key with everything but extensions, issuer and signature.
std::optional<Identity> makeUnsigned(const LeafDescription& description) {
    Identity identity{KeyPointer(EVP_EC_gen("P-256")), CertificatePointer(X509_new())};
    if (!identity.key || !identity.certificate) {
        return std::nullopt;
    }
    X509& certificate = *identity.certificate;
    const bool isFilled =
        X509_set_version(&certificate, X509_VERSION_3) == 1 && setRandomSerialNumber(certificate) &&
        X509_gmtime_adj(X509_getm_notBefore(&certificate), description.validFromDays * kSecondsOfDay) !=
            nullptr &&
        X509_gmtime_adj(X509_getm_notAfter(&certificate), description.validUntilDays * kSecondsOfDay) !=
            nullptr &&
        X509_set_pubkey(&certificate, identity.key.get()) == 1 &&
        setName(X509_get_subject_name(&certificate), description.commonName);
    if (!isFilled) {
        return std::nullopt;
    }
    return identity;
}

bool addLeafExtensions(X509& certificate, X509& issuer, const LeafDescription& description) {
    return addExtension(certificate, issuer, NID_basic_constraints, "critical,CA:FALSE") &&
           addExtension(certificate, issuer, NID_key_usage, "critical,digitalSignature") &&
           addExtension(certificate, issuer, NID_ext_key_usage, "serverAuth") &&
           addExtension(certificate, issuer, NID_subject_alt_name, std::string(description.alternativeNames));
}

bool sign(X509& certificate, X509& issuer, EVP_PKEY& issuerKey) {
    return X509_set_issuer_name(&certificate, X509_get_subject_name(&issuer)) == 1 &&
           X509_sign(&certificate, &issuerKey, EVP_sha256()) > 0;
}

}  // namespace

std::optional<Identity> makeAuthority() {
    auto identity = makeUnsigned({.commonName = "Corvane demo service authority", .alternativeNames = {}});
    if (!identity) {
        return std::nullopt;
    }
    X509& certificate = *identity->certificate;
    const bool isDone =
        addExtension(certificate, certificate, NID_basic_constraints, "critical,CA:TRUE") &&
        addExtension(certificate, certificate, NID_key_usage, "critical,keyCertSign,cRLSign") &&
        addExtension(certificate, certificate, NID_subject_key_identifier, "hash") &&
        sign(certificate, certificate, *identity->key);
    if (!isDone) {
        return std::nullopt;
    }
    return identity;
}

std::optional<Identity> makeLeaf(const LeafDescription& description, const Identity& authority) {
    auto identity = makeUnsigned(description);
    if (!identity) {
        return std::nullopt;
    }
    X509& issuer = *authority.certificate;
    if (!addLeafExtensions(*identity->certificate, issuer, description) ||
        !addExtension(*identity->certificate, issuer, NID_authority_key_identifier, "keyid") ||
        !sign(*identity->certificate, issuer, *authority.key)) {
        return std::nullopt;
    }
    return identity;
}

std::optional<Identity> makeSelfSignedLeaf(const LeafDescription& description) {
    auto identity = makeUnsigned(description);
    if (!identity) {
        return std::nullopt;
    }
    X509& certificate = *identity->certificate;
    if (!addLeafExtensions(certificate, certificate, description) ||
        !sign(certificate, certificate, *identity->key)) {
        return std::nullopt;
    }
    return identity;
}

std::string pemOf(X509& certificate) {
    const BioPointer memory(BIO_new(BIO_s_mem()));
    if (!memory || PEM_write_bio_X509(memory.get(), &certificate) != 1) {
        return {};
    }
    char* text = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &text);
    return {text, static_cast<std::size_t>(size)};
}

}  // namespace corvane::demo
