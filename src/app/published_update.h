#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/bytes.h"
#include "platform/http_client.h"

namespace corvane {

/// What the update feed says about the newest version.
struct PublishedUpdate {
    std::string version;  ///< decimal numbers with points between
    std::string updateNotes;
    std::string downloadLink;
};

/// Reads the feed: a JSON object with the three members as texts; others are ignored. Absent when it is no
/// object. An object that lacks one of the texts is fatal: a feed that parses is trusted. Any thread.
std::optional<PublishedUpdate> parsePublishedUpdate(ByteView feed);

/// Fetches the feed from the host, or host:port, and reads it. Absent when it could not be fetched, whatever
/// the reason. Blocks; any thread.
std::optional<PublishedUpdate> fetchPublishedUpdate(HttpClient& httpClient, std::string_view host);

}  // namespace corvane
