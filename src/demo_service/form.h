#pragma once

#include <map>
#include <string>
#include <string_view>

namespace corvane::demo {

/// The fields of a form body. Clients of this service encode every value twice: once by itself and once more
/// with the assembled form, so that a space arrives as %2520, while an "@" that only the second pass touches
/// arrives as %40. Values are therefore decoded twice; what is no escape the second time stays as it is, so
/// that a form that was encoded once is read as well unless a value holds an escape itself. "&" and "=" are
/// not encoded by such clients and split the form here as they do at the real service: of a value with "&"
/// only the first part counts. Of fields with the same name the first counts; pieces without "=" are ignored.
std::map<std::string, std::string, std::less<>> fieldsOfForm(std::string_view body);

/// Replaces each "%" and two hexadecimal digits by the byte they stand for.
std::string withoutEscapes(std::string_view text);

}  // namespace corvane::demo
