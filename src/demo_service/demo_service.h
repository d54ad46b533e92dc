#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "demo_service/behaviour.h"
#include "demo_service/report_source.h"
#include "demo_service/request_log.h"
#include "demo_service/update_feed.h"

namespace corvane::demo {

/// What the service shows of itself when a client connects.
enum class TlsVariant {
    Trusted,     ///< a certificate of the service's own authority for "localhost", 127.0.0.1 and ::1
    SelfSigned,  ///< for the right host, but of no authority
    WrongHost,   ///< of the service's authority, for another host
    Expired,     ///< of the service's authority, valid until yesterday
    Tls11,       ///< the trusted certificate, but no protocol newer than TLS 1.1
};

struct DemoAccount {
    std::string userName;
    std::string password;
    std::string vendorId;
};

struct DemoServiceOptions {
    TlsVariant tls = TlsVariant::Trusted;
    std::vector<DemoAccount> accounts{};       ///< the sign-ins that are right; empty: every sign-in is
    std::shared_ptr<ReportSource> source{};    ///< absent: made-up reports
    BehaviourRule behaviour{};                 ///< absent: the service's ordinary work
    std::chrono::milliseconds latency{0};      ///< of every report answer, besides what its behaviour says
    UpdateFeed updateFeed{.statusCode = 404};  ///< the default: there is no feed
    bool keepsRequests = true;                 ///< false for a service that runs long and is never asked
    std::uint16_t port = 0;                    ///< of the report service; 0: any free one
    std::uint16_t updatePort = 0;              ///< of the update feed
    std::string hostName{};                    ///< one more name in a right certificate, or empty
};

/// A report service on this machine: TLS, the form, the answers and, on request, every failure that a client
/// may meet. Beside it an update feed over plain HTTP, and a plain listener at which redirects can be pointed
/// to see whether they are followed. Listens on 127.0.0.1 only.
///
/// Serves from the moment it is made until it is destroyed, on threads of its own, one per connection.
/// The destructor ends every open connection at once, however it is stalled. All operations may be called
/// from any thread. Certificates and keys are made at start and live in memory.
class DemoService {
  public:
    /// Starts the service. Null when a port is taken or a certificate cannot be made; `problem` says why.
    static std::unique_ptr<DemoService> start(DemoServiceOptions options, std::string& problem);

    virtual ~DemoService() = default;
    DemoService(const DemoService&) = delete;
    DemoService& operator=(const DemoService&) = delete;

    virtual std::uint16_t port() const = 0;
    virtual std::uint16_t updatePort() const = 0;
    virtual std::uint16_t redirectTargetPort() const = 0;

    /// "localhost:<port>", as the build settings want the hosts.
    std::string reportServiceHost() const;
    std::string updateHost() const;
    std::string redirectTargetHost() const;

    /// The certificate of the service's authority, in PEM form.
    virtual std::string caCertificate() const = 0;

    /// Writes that certificate; false when the file cannot be written.
    bool writeCaFile(const std::filesystem::path& path) const;

    /// Holds for requests from now on. An empty rule brings back the ordinary work.
    virtual void setBehaviour(BehaviourRule rule) = 0;
    virtual void setUpdateFeed(UpdateFeed feed) = 0;

    /// What came in: at the report service, at the update feed, at the target of redirects.
    virtual RequestLog& requests() = 0;
    virtual RequestLog& updateRequests() = 0;
    virtual RequestLog& redirectTargetRequests() = 0;

    /// Connections to the report service since the start, also those that never got through the handshake.
    virtual std::size_t acceptedConnections() const = 0;
    /// Connections to the report service that are open now, and the most that were open at once.
    virtual std::size_t openConnections() const = 0;
    virtual std::size_t peakOpenConnections() const = 0;
    /// Connections to the target of redirects since the start, also those that never sent a request.
    virtual std::size_t redirectTargetConnections() const = 0;
    /// Bytes of requests that the report service received inside TLS, complete requests or not.
    virtual std::uint64_t receivedBytes() const = 0;

  protected:
    DemoService() = default;
};

}  // namespace corvane::demo
