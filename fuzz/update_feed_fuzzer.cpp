// The update feed: its encoding, its members, and the link that is handed to the browser.

#include <optional>
#include <string>
#include <variant>

#include "app/json_encoding.h"
#include "app/json_object.h"
#include "app/link_url.h"
#include "app/published_update.h"
#include "fuzz_input.h"

namespace {

// A feed that parses and lacks a text ends the program on purpose: it is trusted.
bool hasTexts(const corvane::JsonObject& feed) {
    for (const char* name : {"version", "updateNotes", "downloadLink"}) {
        const auto found = feed.find(name);
        if (found == feed.end() || !std::holds_alternative<std::string>(found->second))
            return false;
    }
    return true;
}

bool isPrintableAscii(const std::string& text) {
    return text.find_first_not_of(
               "!#$%&'()*+,-./0123456789:;=?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[]_"
               "abcdefghijklmnopqrstuvwxyz~") == std::string::npos;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace corvane;
    const std::optional<std::string> text = jsonTextInUtf8({data, size});
    const std::optional<JsonObject> feed = text ? parseJsonObject(*text) : std::nullopt;
    if (feed && !hasTexts(*feed))
        return 0;
    const std::optional<PublishedUpdate> update = parsePublishedUpdate({data, size});
    CORVANE_EXPECT(update.has_value() == feed.has_value());
    if (update && isAbsoluteURL(update->downloadLink)) {
        CORVANE_EXPECT(update->downloadLink.find(':') != std::string::npos);
        CORVANE_EXPECT(isPrintableAscii(update->downloadLink));
    }
    return 0;
}
