#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace corvane {

/// The numbers between the points of a version; a part that is no decimal number of 64 bits, an empty one
/// included, is 0. Versions compare as their lists do: "1.10" is above "1.9", and "1.0.0" above "1.0".
std::vector<std::int64_t> versionComponents(std::string_view version);

}  // namespace corvane
