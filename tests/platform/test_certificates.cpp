#include "platform/test_certificates.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <cstdlib>

namespace corvane::test {
namespace {

void require(bool isDone) {
    if (!isDone)
        std::abort();  // a test machine without working OpenSSL
}

void setName(X509* certificate, const std::string& name) {
    X509_NAME* const subject = X509_get_subject_name(certificate);
    require(X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_UTF8,
                                       reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0) == 1);
}

void setRandomSerial(X509* certificate) {
    std::uint32_t serial = 0;
    require(RAND_bytes(reinterpret_cast<unsigned char*>(&serial), sizeof serial) == 1);
    require(ASN1_INTEGER_set(X509_get_serialNumber(certificate), static_cast<long>(serial >> 1U) + 1) == 1);
}

void addExtension(X509* certificate, X509* issuer, int kind, const std::string& value) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str());
    require(extension != nullptr);
    require(X509_add_ext(certificate, extension, -1) == 1);
    X509_EXTENSION_free(extension);
}

Identity makeUnsigned(const std::string& name, std::chrono::seconds validFrom, std::chrono::seconds validTo) {
    Identity identity;
    identity.key.reset(EVP_EC_gen("P-256"));
    identity.certificate.reset(X509_new());
    require(identity.key && identity.certificate);
    X509* const certificate = identity.certificate.get();
    require(X509_set_version(certificate, 2) == 1);
    setRandomSerial(certificate);
    X509_gmtime_adj(X509_getm_notBefore(certificate), validFrom.count());
    X509_gmtime_adj(X509_getm_notAfter(certificate), validTo.count());
    require(X509_set_pubkey(certificate, identity.key.get()) == 1);
    setName(certificate, name);
    return identity;
}

void sign(Identity& identity, const Identity& issuer) {
    X509* const certificate = identity.certificate.get();
    require(X509_set_issuer_name(certificate, X509_get_subject_name(issuer.certificate.get())) == 1);
    require(X509_sign(certificate, issuer.key.get(), EVP_sha256()) > 0);
}

}  // namespace

std::string Identity::pem() const {
    BIO* const output = BIO_new(BIO_s_mem());
    require(PEM_write_bio_X509(output, certificate.get()) == 1);
    char* text = nullptr;
    const long length = BIO_get_mem_data(output, &text);
    std::string result(text, static_cast<std::size_t>(length));
    BIO_free(output);
    return result;
}

Identity makeAuthority(const std::string& name) {
    Identity authority = makeUnsigned(name, std::chrono::seconds(-3600), std::chrono::seconds(3600));
    X509* const certificate = authority.certificate.get();
    addExtension(certificate, certificate, NID_basic_constraints, "critical,CA:TRUE");
    addExtension(certificate, certificate, NID_key_usage, "critical,keyCertSign,cRLSign");
    addExtension(certificate, certificate, NID_subject_key_identifier, "hash");
    sign(authority, authority);
    return authority;
}

Identity makeServerIdentity(const Identity* authority, const ServerCertificateWishes& wishes) {
    Identity identity = makeUnsigned("Test server", wishes.validFrom, wishes.validTo);
    std::string names;
    for (const std::string& name : wishes.dnsNames)
        names += (names.empty() ? "DNS:" : ",DNS:") + name;
    for (const std::string& address : wishes.addresses)
        names += (names.empty() ? "IP:" : ",IP:") + address;
    const Identity& issuer = authority != nullptr ? *authority : identity;
    addExtension(identity.certificate.get(), issuer.certificate.get(), NID_subject_alt_name, names);
    sign(identity, issuer);
    return identity;
}

}  // namespace corvane::test
