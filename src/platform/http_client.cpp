#include "platform/http_client.h"

namespace corvane {

std::optional<std::string> HttpResponse::headerField(std::string_view exactName) const {
    std::optional<std::string> value;
    for (const HttpHeader& header : headers) {
        if (header.name != exactName)
            continue;
        if (value)
            *value += ", " + header.value;
        else
            value = header.value;
    }
    return value;
}

}  // namespace corvane
