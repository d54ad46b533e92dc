#include "demo_service/tls_context.h"

#include <utility>

#include "demo_service/certificates.h"

namespace corvane::demo {

namespace {

constexpr std::string_view kNamesOfThisMachine = "DNS:localhost,IP:127.0.0.1,IP:::1";
constexpr LeafDescription kAnotherHost{.commonName = "elsewhere.example",
                                       .alternativeNames = "DNS:elsewhere.example"};
constexpr LeafDescription kUntilYesterday{.commonName = "localhost",
                                          .alternativeNames = kNamesOfThisMachine,
                                          .validFromDays = -30,
                                          .validUntilDays = -1};

std::optional<Identity> makeServerIdentity(TlsVariant variant, std::string_view hostName,
                                           const Identity& authority) {
    std::string names(kNamesOfThisMachine);
    if (!hostName.empty()) {
        names.append(",DNS:").append(hostName);
    }
    const LeafDescription thisMachine{.commonName = "localhost", .alternativeNames = names};
    switch (variant) {
        case TlsVariant::SelfSigned:
            return makeSelfSignedLeaf(thisMachine);
        case TlsVariant::WrongHost:
            return makeLeaf(kAnotherHost, authority);
        case TlsVariant::Expired:
            return makeLeaf(kUntilYesterday, authority);
        case TlsVariant::Trusted:
        case TlsVariant::Tls11:
            break;
    }
    return makeLeaf(thisMachine, authority);
}

bool limitProtocol(SSL_CTX& context, TlsVariant variant) {
    if (variant != TlsVariant::Tls11) {
        return SSL_CTX_set_min_proto_version(&context, TLS1_2_VERSION) == 1;
    }
    // The signatures of TLS 1.1 are below OpenSSL's ordinary level of security.
    SSL_CTX_set_security_level(&context, 0);
    return SSL_CTX_set_min_proto_version(&context, TLS1_1_VERSION) == 1 &&
           SSL_CTX_set_max_proto_version(&context, TLS1_1_VERSION) == 1 &&
           SSL_CTX_set_cipher_list(&context, "ALL:@SECLEVEL=0") == 1;
}

}  // namespace

std::optional<TlsSetup> makeTlsSetup(TlsVariant variant, std::string_view hostName) {
    const auto authority = makeAuthority();
    if (!authority) {
        return std::nullopt;
    }
    const auto server = makeServerIdentity(variant, hostName, *authority);
    TlsSetup setup{TlsContextPointer(SSL_CTX_new(TLS_server_method())), pemOf(*authority->certificate)};
    if (!server || !setup.context || setup.caCertificate.empty() ||
        SSL_CTX_use_certificate(setup.context.get(), server->certificate.get()) != 1 ||
        SSL_CTX_use_PrivateKey(setup.context.get(), server->key.get()) != 1 ||
        !limitProtocol(*setup.context, variant)) {
        return std::nullopt;
    }
    SSL_CTX_set_mode(setup.context.get(), SSL_MODE_ENABLE_PARTIAL_WRITE |
                                              SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER | SSL_MODE_RELEASE_BUFFERS);
    return setup;
}

}  // namespace corvane::demo
