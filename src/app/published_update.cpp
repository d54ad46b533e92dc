#include "app/published_update.h"

#include <cstddef>
#include <utility>
#include <variant>

#include "app/json_encoding.h"
#include "app/json_object.h"
#include "app/link_url.h"
#include "platform/fatal_error.h"
#include "platform/text_format.h"

namespace corvane {

namespace {

constexpr std::string_view feedPath = "/Plovance/update.json";
constexpr std::size_t longestFeed = std::size_t{1024} * 1024;

std::string requiredText(const JsonObject& feed, std::string_view name) {
    const auto found = feed.find(name);
    const std::string* text = found == feed.end() ? nullptr : std::get_if<std::string>(&found->second);
    if (text == nullptr)
        fatalError(formatText("the update feed has no text \"%@\"", {name}));
    return *text;
}

/// An error page is no document, even when it is JSON; the body of a challenge to sign in is one.
bool deliversDocument(int statusCode) {
    return statusCode == 101 || (statusCode >= 200 && statusCode < 400) || statusCode == 401 ||
           statusCode == 407;
}

}  // namespace

std::optional<PublishedUpdate> parsePublishedUpdate(ByteView feed) {
    const auto text = jsonTextInUtf8(feed);
    const auto members = text ? parseJsonObject(*text) : std::nullopt;
    if (!members)
        return std::nullopt;
    return PublishedUpdate{.version = requiredText(*members, "version"),
                           .updateNotes = requiredText(*members, "updateNotes"),
                           .downloadLink = requiredText(*members, "downloadLink")};
}

std::optional<PublishedUpdate> fetchPublishedUpdate(HttpClient& httpClient, std::string_view host) {
    std::string url = formatText("http://%@%@", {host, feedPath});
    if (!isAbsoluteURL(url))
        return std::nullopt;
    const HttpAnswer answer = httpClient.sendSynchronousRequest({.method = "GET",
                                                                 .url = std::move(url),
                                                                 .headers = {},
                                                                 .body = {},
                                                                 .followsRedirects = true,
                                                                 .maximumBodySize = longestFeed});
    if (!answer.response || !answer.body || !deliversDocument(answer.response->statusCode))
        return std::nullopt;
    return parsePublishedUpdate(*answer.body);
}

}  // namespace corvane
