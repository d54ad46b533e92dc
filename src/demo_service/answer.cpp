#include "demo_service/answer.h"

#include <fmt/format.h>

#include <string_view>

namespace corvane::demo {

namespace {

std::string_view reasonOf(int statusCode) {
    switch (statusCode) {
        case 200:
            return "OK";
        case 301:
            return "Moved Permanently";
        case 302:
            return "Found";
        case 303:
            return "See Other";
        case 307:
            return "Temporary Redirect";
        case 308:
            return "Permanent Redirect";
        case 400:
            return "Bad Request";
        case 404:
            return "Not Found";
        case 405:
            return "Method Not Allowed";
        case 429:
            return "Too Many Requests";
        case 500:
            return "Internal Server Error";
        case 502:
            return "Bad Gateway";
        case 503:
            return "Service Unavailable";
        default:
            return "Status";
    }
}

}  // namespace

std::string statusText(int statusCode) {
    return fmt::format("{} {}", statusCode, reasonOf(statusCode));
}

Answer statusPage(int statusCode) {
    const std::string page = fmt::format(
        "<html><head><title>{0}</title></head><body><h1>{0}</h1></body></html>\n", statusText(statusCode));
    return {statusCode, {"Content-Type: text/html"}, toBytes(page)};
}

}  // namespace corvane::demo
