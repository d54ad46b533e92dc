#include "core/autoingestion_form.h"

#include <optional>
#include <utility>

#include "core/form_value_encoding.h"
#include "platform/fatal_error.h"

namespace corvane {

namespace {

// The message names no value: one of them is the password.
std::string required(std::optional<std::string> escaped) {
    if (!escaped)
        fatalError("a text of the report request is not valid UTF-8");
    return *std::move(escaped);
}

}  // namespace

std::string_view rawValue(AutoingestionToolTypeOfReport /*type*/) {
    return "Sales";
}

std::string_view rawValue(AutoingestionToolDateType type) {
    switch (type) {
        case AutoingestionToolDateType::Daily:
            break;
        case AutoingestionToolDateType::Weekly:
            return "Weekly";
        case AutoingestionToolDateType::Monhtly:
            return "Monhtly";
        case AutoingestionToolDateType::Yearly:
            return "Yearly";
    }
    return "Daily";
}

std::string_view rawValue(AutoingestionToolReportType /*type*/) {
    return "Summary";
}

AutoingestionToolDateType dateTypeOfOrdinal(unsigned ordinal) {
    return static_cast<AutoingestionToolDateType>(ordinal & 3U);
}

std::string formBody(const AutoingestionForm& form) {
    const std::pair<std::string_view, std::string_view> fields[] = {
        {"USERNAME=", form.username},
        {"&PASSWORD=", form.password},
        {"&VNDNUMBER=", form.vendorID},
        {"&TYPEOFREPORT=", rawValue(form.typeOfReport)},
        {"&DATETYPE=", rawValue(form.dateType)},
        {"&REPORTTYPE=", rawValue(form.reportType)},
        {"&REPORTDATE=", form.reportDate},
    };
    std::string text;
    for (const auto& [name, value] : fields) {
        text += name;
        text += required(escapeIllegalURLCharacters(value));
    }
    return required(URLEncodeString(text));
}

}  // namespace corvane
