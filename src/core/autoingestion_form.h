#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// The texts of these go onto the wire as they stand, the third date type's spelling included.
enum class AutoingestionToolTypeOfReport { Sales };
enum class AutoingestionToolDateType { Daily, Weekly, Monhtly, Yearly };
enum class AutoingestionToolReportType { Summary };

std::string_view rawValue(AutoingestionToolTypeOfReport type);
std::string_view rawValue(AutoingestionToolDateType type);
std::string_view rawValue(AutoingestionToolReportType type);

/// The date type of an ordinal; only its two low bits count.
AutoingestionToolDateType dateTypeOfOrdinal(unsigned ordinal);

/// What a request for one report tells the service. All texts are UTF-8.
struct AutoingestionForm {
    std::string_view username;
    std::string_view password;
    std::string_view vendorID;
    AutoingestionToolTypeOfReport typeOfReport = AutoingestionToolTypeOfReport::Sales;
    AutoingestionToolDateType dateType = AutoingestionToolDateType::Daily;
    AutoingestionToolReportType reportType = AutoingestionToolReportType::Summary;
    std::string_view reportDate;  ///< "yyyyMMdd", for every date type
};

/// The body of the request. Each value is escaped on its own, then the assembled text once more, so that most
/// special characters arrive escaped twice, while "&" and "=" arrive bare and split the form. The service
/// knows no other form of these texts. Texts that are not valid UTF-8 are fatal.
std::string formBody(const AutoingestionForm& form);

}  // namespace corvane
