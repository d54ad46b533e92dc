#include "demo_service/update_feed.h"

#include <nlohmann/json.hpp>

namespace corvane::demo {

UpdateFeed updateFeedOffering(std::string_view version, std::string_view updateNotes,
                              std::string_view downloadLink) {
    const nlohmann::json feed{
        {"version", version}, {"updateNotes", updateNotes}, {"downloadLink", downloadLink}};
    // Bytes that are no UTF-8 are replaced rather than thrown out.
    return {.body = feed.dump(4, ' ', false, nlohmann::json::error_handler_t::replace) + "\n"};
}

}  // namespace corvane::demo
