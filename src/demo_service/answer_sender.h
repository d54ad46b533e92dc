#pragma once

#include "demo_service/answer.h"
#include "demo_service/behaviour.h"
#include "demo_service/byte_stream.h"

namespace corvane::demo {

/// Puts the answer on the wire in the way that `delivery` says. True when the connection can take the next
/// request; otherwise it is closed, or was given up by the other side.
bool sendAnswer(ByteStream& stream, const Answer& answer, const Delivery& delivery);

}  // namespace corvane::demo
