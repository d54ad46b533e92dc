#include "demo_service/report_front.h"

#include <optional>
#include <utility>

#include "demo_service/answer_sender.h"
#include "demo_service/report_answers.h"
#include "demo_service/request_reader.h"
#include "demo_service/tls_stream.h"

namespace corvane::demo {

namespace {

constexpr std::string_view kRequestLine = "POST /autoingestion.tft? HTTP/1.1";

}  // namespace

ReportFront::ReportFront(TlsContextPointer tls, const DemoServiceOptions& options)
    : tls_(std::move(tls)),
      accounts_(options.accounts),
      source_(options.source),
      latency_(options.latency),
      rule_(options.behaviour),
      log_(options.keepsRequests) {}

Listener::Serve ReportFront::serve() {
    return [this](Socket socket, std::size_t connection) { serveConnection(std::move(socket), connection); };
}

void ReportFront::setBehaviour(BehaviourRule rule) {
    const std::scoped_lock lock(mutex_);
    rule_ = std::move(rule);
}

Behaviour ReportFront::behaviourFor(const ReportRequest& request) {
    BehaviourRule rule;
    {
        const std::scoped_lock lock(mutex_);
        rule = rule_;
    }
    const auto told = rule ? rule(request) : std::nullopt;
    return told ? *told : ordinaryBehaviour(request, accounts_);
}

ReportFront::Reply ReportFront::replyTo(const ReceivedRequest& request) {
    if (request.requestLine != kRequestLine) {
        return {statusPage(404), {}};
    }
    if (!request.reportRequest) {
        return {incompleteFormAnswer(), {}};
    }
    Behaviour behaviour = behaviourFor(*request.reportRequest);
    behaviour.delivery.latency += latency_;
    return {answerFor(*request.reportRequest, behaviour, *source_), behaviour.delivery};
}

void ReportFront::serveConnection(Socket socket, std::size_t connection) {
    TlsStream stream(std::move(socket), *tls_);
    if (!stream.handshake()) {
        return;
    }
    RequestReader reader(stream, [this](std::size_t count) { receivedBytes_ += count; });
    bool isOpen = true;
    while (isOpen) {
        auto request = reader.next();
        if (!request) {
            return;
        }
        request->connection = connection;
        request->reportRequest = reportRequestFromForm(asText(request->body));
        const Reply reply = replyTo(log_.add(std::move(*request)));
        isOpen = sendAnswer(stream, reply.answer, reply.delivery);
    }
}

}  // namespace corvane::demo
