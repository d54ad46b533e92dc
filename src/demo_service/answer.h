#pragma once

#include <string>
#include <vector>

#include "platform/bytes.h"

namespace corvane::demo {

/// An answer as it is meant, apart from how it gets onto the wire.
struct Answer {
    int statusCode = 200;
    std::vector<std::string>
        headerLines;  ///< without line ends; neither Content-Length nor Transfer-Encoding
    Bytes body;
};

/// "404 Not Found"; a status without a name of its own gets "Status".
std::string statusText(int statusCode);

/// A small page with the status as its text.
Answer statusPage(int statusCode);

}  // namespace corvane::demo
