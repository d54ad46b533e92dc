// The form: whatever a user types comes out again at the service's end.

#include <optional>
#include <string>

#include "core/autoingestion_form.h"
#include "core/form_value_encoding.h"
#include "fuzz_input.h"

namespace {

unsigned digitValue(char digit) {
    const std::string_view digits = "0123456789ABCDEF";
    const std::size_t value = digits.find(digit);
    CORVANE_EXPECT(value != std::string_view::npos);
    return static_cast<unsigned>(value);
}

std::string decoded(std::string_view text) {
    std::string result;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] != '%') {
            result += text[index];
            continue;
        }
        CORVANE_EXPECT(index + 2 < text.size());
        result += static_cast<char>(digitValue(text[index + 1]) * 16 + digitValue(text[index + 2]));
        index += 2;
    }
    return result;
}

void checkPass(std::string_view text, const std::optional<std::string>& encoded) {
    CORVANE_EXPECT(encoded);
    for (const char character : *encoded)
        CORVANE_EXPECT(character > ' ' && character < '\x7F');
    CORVANE_EXPECT(decoded(*encoded) == text);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace corvane;
    fuzz::FuzzInput input(data, size);
    AutoingestionForm form;
    form.username = input.takeLine();
    form.password = input.takeLine();
    form.vendorID = input.takeLine();
    form.reportDate = "20150104";
    for (const std::string_view text : {form.username, form.password, form.vendorID}) {
        const auto escaped = escapeIllegalURLCharacters(text);
        const auto encoded = URLEncodeString(text);
        CORVANE_EXPECT(escaped.has_value() == encoded.has_value());
        if (!escaped)
            return 0;  // not UTF-8
        checkPass(text, escaped);
        checkPass(text, encoded);
    }
    std::string plain = "USERNAME=";
    plain.append(form.username).append("&PASSWORD=").append(form.password);
    plain.append("&VNDNUMBER=").append(form.vendorID);
    plain += "&TYPEOFREPORT=Sales&DATETYPE=Daily&REPORTTYPE=Summary&REPORTDATE=20150104";
    CORVANE_EXPECT(decoded(decoded(formBody(form))) == plain);
    return 0;
}
