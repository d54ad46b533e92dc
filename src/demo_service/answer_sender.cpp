#include "demo_service/answer_sender.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace corvane::demo {

namespace {

constexpr std::size_t kPieceSize = std::size_t{64} * 1024;

std::string headOf(const Answer& answer, std::string_view framing) {
    std::string head = fmt::format("HTTP/1.1 {}\r\n", statusText(answer.statusCode));
    for (const std::string& line : answer.headerLines) {
        head.append(line).append("\r\n");
    }
    head.append(framing).append("\r\n\r\n");
    return head;
}

std::string headWithLength(const Answer& answer, std::uint64_t size) {
    return headOf(answer, fmt::format("Content-Length: {}", size));
}

std::string chunkedHead(const Answer& answer) {
    return headOf(answer, "Transfer-Encoding: chunked");
}

std::string chunkStart(std::size_t size) {
    return fmt::format("{:x}\r\n", size);
}

ByteView firstHalf(const Answer& answer) {
    return ByteView(answer.body).first(answer.body.size() / 2);
}

bool sendWhole(ByteStream& stream, const Answer& answer) {
    Bytes message = toBytes(headWithLength(answer, answer.body.size()));
    message.insert(message.end(), answer.body.begin(), answer.body.end());
    return stream.write(message);
}

bool sendChunk(ByteStream& stream, ByteView piece) {
    return piece.empty() || (stream.write(asBytes(chunkStart(piece.size()))) && stream.write(piece) &&
                             stream.write(asBytes("\r\n")));
}

bool sendChunked(ByteStream& stream, const Answer& answer) {
    const ByteView first = firstHalf(answer);
    return stream.write(asBytes(chunkedHead(answer))) && sendChunk(stream, first) &&
           sendChunk(stream, ByteView(answer.body).subspan(first.size())) &&
           stream.write(asBytes("0\r\n\r\n"));
}

bool sendHeadAndHalf(ByteStream& stream, const Answer& answer) {
    // An empty body can be cut as well: one byte is announced that never comes.
    const std::uint64_t announced = std::max<std::uint64_t>(answer.body.size(), 1);
    return stream.write(asBytes(headWithLength(answer, announced))) && stream.write(firstHalf(answer));
}

void sendHalfAChunk(ByteStream& stream, const Answer& answer) {
    static_cast<void>(stream.write(asBytes(chunkedHead(answer))) &&
                      stream.write(asBytes(chunkStart(answer.body.size() + 1))) &&
                      stream.write(firstHalf(answer)));
}

void sendEndlessHeaders(ByteStream& stream, const Answer& answer) {
    if (!stream.write(asBytes(fmt::format("HTTP/1.1 {}\r\n", statusText(answer.statusCode))))) {
        return;
    }
    const std::string lines = [] {
        std::string many;
        for (int number = 0; number < 500; ++number) {
            many += fmt::format("X-Endless-{}: {}\r\n", number, std::string(100, 'x'));
        }
        return many;
    }();
    while (stream.write(asBytes(lines))) {
    }
}

void sendSizedBody(ByteStream& stream, const Answer& answer, std::uint64_t size) {
    if (!stream.write(asBytes(headWithLength(answer, size)))) {
        return;
    }
    const Bytes piece(kPieceSize, std::uint8_t{'x'});
    std::uint64_t left = size;
    while (left > 0) {
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(left, piece.size()));
        if (!stream.write(ByteView(piece).first(count))) {
            return;
        }
        left -= count;
    }
}

void sendUnsizedBody(ByteStream& stream, const Answer& answer) {
    if (!stream.write(asBytes(chunkedHead(answer)))) {
        return;
    }
    const Bytes piece(kPieceSize, std::uint8_t{'x'});
    while (sendChunk(stream, piece)) {
    }
}

bool trickle(ByteStream& stream, ByteView bytes, std::chrono::milliseconds interval) {
    return std::ranges::all_of(bytes, [&](const std::uint8_t& byte) {
        return stream.write(ByteView(&byte, 1)) && stream.waitWhileConnected(interval);
    });
}

void stall(ByteStream& stream) {
    static_cast<void>(stream.waitWhileConnected(std::nullopt));
}

/// Everything that ends the connection; leaves the closing in order to the caller.
void sendToTheEnd(ByteStream& stream, const Answer& answer, const Delivery& delivery) {
    const std::string head = headWithLength(answer, answer.body.size());
    switch (delivery.kind) {
        case DeliveryKind::Whole:
        case DeliveryKind::Chunked:
        case DeliveryKind::CloseBeforeAnswer:
            break;
        case DeliveryKind::ResetBeforeAnswer:
            stream.reset();
            break;
        case DeliveryKind::ResetInBody:
            static_cast<void>(sendHeadAndHalf(stream, answer));
            stream.reset();
            break;
        case DeliveryKind::CutBody:
            static_cast<void>(sendHeadAndHalf(stream, answer));
            break;
        case DeliveryKind::CutChunk:
            sendHalfAChunk(stream, answer);
            break;
        case DeliveryKind::StallBeforeHeader:
            stall(stream);
            break;
        case DeliveryKind::StallInBody:
            static_cast<void>(sendHeadAndHalf(stream, answer));
            stall(stream);
            break;
        case DeliveryKind::EndlessHeaders:
            sendEndlessHeaders(stream, answer);
            break;
        case DeliveryKind::EndlessBody:
            if (delivery.bodySize) {
                sendSizedBody(stream, answer, *delivery.bodySize);
            } else {
                sendUnsizedBody(stream, answer);
            }
            break;
        case DeliveryKind::Trickle:
            static_cast<void>(trickle(stream, asBytes(head), delivery.interval) &&
                              trickle(stream, answer.body, delivery.interval));
            break;
        case DeliveryKind::TrickleBody:
            static_cast<void>(stream.write(asBytes(head)) && trickle(stream, answer.body, delivery.interval));
            break;
    }
}

}  // namespace

bool sendAnswer(ByteStream& stream, const Answer& answer, const Delivery& delivery) {
    if (delivery.latency.count() > 0 && !stream.waitWhileConnected(delivery.latency)) {
        return false;
    }
    if (delivery.kind == DeliveryKind::Whole) {
        return sendWhole(stream, answer);
    }
    if (delivery.kind == DeliveryKind::Chunked) {
        return sendChunked(stream, answer);
    }
    sendToTheEnd(stream, answer, delivery);
    stream.close();
    return false;
}

}  // namespace corvane::demo
