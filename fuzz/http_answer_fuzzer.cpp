// The bytes of an answer, from the socket to the suggested name: the client itself against a server on this
// machine that sends the input and closes.

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <mutex>
#include <string>
#include <thread>

#include "fuzz_input.h"
#include "platform/suggested_file_name.h"
#include "platform/system/curl_http_client.h"

namespace {

constexpr std::size_t longestBody = std::size_t{16} << 10;
constexpr std::size_t longestHead = std::size_t{8} << 10;

/// Answers each connection's request with the bytes it was told last.
class AnsweringServer {
  public:
    AnsweringServer() {
        listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        auto* const generic = reinterpret_cast<sockaddr*>(&address);
        CORVANE_EXPECT(bind(listener_, generic, length) == 0);
        CORVANE_EXPECT(listen(listener_, 16) == 0);
        CORVANE_EXPECT(getsockname(listener_, generic, &length) == 0);
        port_ = ntohs(address.sin_port);
        std::thread([this] { serve(); }).detach();
    }

    int port() const { return port_; }

    void setAnswer(corvane::ByteView answer) {
        const std::lock_guard lock(mutex_);
        answer_.assign(answer.begin(), answer.end());
    }

  private:
    void serve() {
        while (true) {
            const int client = accept(listener_, nullptr, nullptr);
            if (client < 0)
                continue;
            readRequest(client);
            sendWhole(client, answer());
            shutdown(client, SHUT_WR);
            close(client);
        }
    }

    // A client that has given up may be gone before its answer is sent, so each is a copy.
    corvane::Bytes answer() {
        const std::lock_guard lock(mutex_);
        return answer_;
    }

    static void sendWhole(int client, corvane::ByteView bytes) {
        while (!bytes.empty()) {
            const ssize_t count = send(client, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (count <= 0)
                return;
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        }
    }

    static void readRequest(int client) {
        std::string received;
        char buffer[1024];
        while (received.find("\r\n\r\n") == std::string::npos) {
            const ssize_t count = recv(client, buffer, sizeof buffer, 0);
            if (count <= 0)
                return;
            received.append(buffer, static_cast<std::size_t>(count));
        }
    }

    int listener_ = -1;
    int port_ = 0;
    std::mutex mutex_;
    corvane::Bytes answer_;
};

AnsweringServer& server() {
    static auto* const instance = new AnsweringServer;  // its thread has no end
    return *instance;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace corvane;
    server().setAnswer({data, size});
    CurlHttpClientOptions options;
    options.connectLimit = std::chrono::seconds(5);
    options.idleLimit = std::chrono::seconds(5);
    options.maximumHeaderVolume = longestHead;
    CurlHttpClient client(options);
    HttpRequest request;
    request.method = "GET";
    request.url = "http://127.0.0.1:" + std::to_string(server().port()) + "/autoingestion.tft?";
    request.maximumBodySize = longestBody;
    const HttpAnswer answer = client.sendSynchronousRequest(request);
    CORVANE_EXPECT(answer.body.has_value() == answer.response.has_value());
    CORVANE_EXPECT(answer.body.has_value() == answer.errorDescription.empty());
    CORVANE_EXPECT(!answer.isCancelled);
    if (!answer.body)
        return 0;
    CORVANE_EXPECT(answer.body->size() <= longestBody);
    CORVANE_EXPECT(!suggestedFileName(*answer.response).empty());
    return 0;
}
