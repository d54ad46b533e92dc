#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Percent-encoding of texts on their way to the report service. Both operations replace every byte of the
/// UTF-8 form of a character that they do not keep by "%" and two upper-case hexadecimal digits. Absent when
/// the text is not valid UTF-8. Any thread.
namespace corvane {

/// What a single form value goes through: keeps the characters that are legal in a URL's query, that is ASCII
/// letters and digits and ! $ & ' ( ) * + , - . / : ; = ? @ _ ~
std::optional<std::string> escapeIllegalURLCharacters(std::string_view text);

/// What a whole form text goes through: keeps ASCII letters and digits and & - . = _ ~ only. A percent sign
/// is escaped as well, so what an earlier pass has escaped is escaped again.
std::optional<std::string> URLEncodeString(std::string_view text);

}  // namespace corvane
