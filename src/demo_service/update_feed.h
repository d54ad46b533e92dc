#pragma once

#include <string>
#include <string_view>

#include "demo_service/behaviour.h"

namespace corvane::demo {

/// What is answered at /Plovance/update.json.
struct UpdateFeed {
    std::string body{};
    int statusCode = 200;
    std::string contentType = "application/json";
    Delivery delivery{};
};

/// A feed in order: an object with the members "version", "updateNotes" and "downloadLink".
UpdateFeed updateFeedOffering(std::string_view version, std::string_view updateNotes,
                              std::string_view downloadLink);

}  // namespace corvane::demo
