#include "demo_service/plain_front.h"

#include <utility>

#include "demo_service/answer_sender.h"
#include "demo_service/plain_stream.h"
#include "demo_service/request_reader.h"

namespace corvane::demo {

PlainFront::PlainFront(AnswerRequest answerRequest, bool keepsRequests)
    : answerRequest_(std::move(answerRequest)), log_(keepsRequests) {}

Listener::Serve PlainFront::serve() {
    return [this](Socket socket, std::size_t connection) { serveConnection(std::move(socket), connection); };
}

void PlainFront::serveConnection(Socket socket, std::size_t connection) {
    PlainStream stream(std::move(socket));
    RequestReader reader(stream, [](std::size_t) {});
    bool isOpen = true;
    while (isOpen) {
        auto request = reader.next();
        if (!request) {
            return;
        }
        request->connection = connection;
        const PlainAnswer answer = answerRequest_(log_.add(std::move(*request)));
        isOpen = sendAnswer(stream, answer.answer, answer.delivery);
    }
}

}  // namespace corvane::demo
