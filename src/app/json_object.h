#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace corvane {

/// Null, an array or an object: nothing that the program reads.
struct OtherJson {
    bool operator==(const OtherJson&) const = default;
};

using JsonMember = std::variant<OtherJson, bool, double, std::string>;
using JsonObject = std::map<std::string, JsonMember, std::less<>>;

/// The members of the object that the UTF-8 text holds (RFC 8259); of members with the same name the first. A
/// byte order mark in front, and one comma after the last element of an array or object, are let through.
/// Absent when the text is not JSON, is no object, holds a number out of range or half a surrogate pair, or
/// nests more than 512 levels deep.
std::optional<JsonObject> parseJsonObject(std::string_view text);

}  // namespace corvane
