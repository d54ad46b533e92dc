#include "demo_service/made_up_report_source.h"

#include <fmt/format.h>

#include <array>
#include <iterator>
#include <random>

namespace corvane::demo {

namespace {

constexpr std::string_view kHeaderRow =
    "Provider\tProvider Country\tSKU\tDeveloper\tTitle\tVersion\tProduct Type Identifier\tUnits\t"
    "Developer Proceeds\tBegin Date\tEnd Date\tCustomer Currency\tCountry Code\tCurrency of Proceeds\t"
    "Apple Identifier\tCustomer Price\tPromo Code\tParent Identifier\tSubscription\tPeriod\tCategory\n";

struct Product {
    std::string_view sku;
    std::string_view title;
    std::string_view version;
    std::string_view typeIdentifier;
    unsigned appleIdentifier;
    unsigned priceInCents;  // in the currency of the store; 0 for a free one
    std::string_view parentSku;
    std::string_view subscription;
    std::string_view period;
    std::string_view category;
};

constexpr std::array kProducts{
    Product{"LEDGERLEAF", "Ledgerleaf", "3.2.1", "1F", 418200117, 299, "", "", "", "Finance"},
    Product{"LEDGERLEAF.PRO", "Ledgerleaf Pro", "", "IA1", 418200233, 499, "LEDGERLEAF", "", "", "Finance"},
    Product{"LEDGERLEAF.SYNC", "Ledgerleaf Sync", "", "IAY", 418200239, 99, "LEDGERLEAF", "Renewal",
            "1 Month", "Finance"},
    Product{"LEDGERLEAF", "Ledgerleaf", "3.2.1", "7F", 418200117, 0, "", "", "", "Finance"},
    Product{"WOLKENBUCH", "Wolkenbuch für Wetterfühlige", "1.0.4", "1", 502771904, 199, "", "", "",
            "Weather"},
    Product{"TIDEPATH", "Tidepath – Gezeiten & Häfen", "2.10", "1T", 466031258, 0, "", "", "", "Navigation"},
    Product{"TIDEPATH.CHARTS", "Chart Pack «Méditerranée»", "", "IA9", 466031377, 799, "TIDEPATH", "New",
            "1 Year", "Navigation"},
    Product{"KANJIGARDEN", "漢字の庭", "1.4", "1F", 533908416, 399, "", "", "", "Education"},
};

struct Store {
    std::string_view countryCode;
    std::string_view currency;
    unsigned centsPerTierCent;  // price in hundredths of the currency, for one hundredth of the tier
};

constexpr std::array kStores{
    Store{"US", "USD", 1}, Store{"DE", "EUR", 1},  Store{"GB", "GBP", 1}, Store{"JP", "JPY", 120},
    Store{"CA", "CAD", 1}, Store{"AU", "AUD", 1},  Store{"CH", "CHF", 1}, Store{"BR", "USD", 1},
    Store{"SE", "SEK", 9}, Store{"MX", "MXN", 15},
};

constexpr std::array<std::string_view, 4> kPromoCodes{"", "", "", "CR-RW"};

using Random = std::mt19937_64;

/// The standard's distributions give other numbers on other machines; the generator itself does not.
std::size_t pick(Random& random, std::size_t count) {
    return static_cast<std::size_t>(random() % count);
}

std::uint64_t seedOf(std::string_view text) {
    std::uint64_t hash = 14695981039346656037ULL;  // FNV-1a
    for (const char each : text) {
        hash = (hash ^ static_cast<unsigned char>(each)) * 1099511628211ULL;
    }
    return hash;
}

std::string dayText(std::chrono::year_month_day date) {
    return fmt::format("{:02}/{:02}/{:04}", static_cast<unsigned>(date.month()),
                       static_cast<unsigned>(date.day()), static_cast<int>(date.year()));
}

std::string amountText(std::size_t hundredths) {
    return fmt::format("{}.{:02}", hundredths / 100, hundredths % 100);
}

std::size_t greatestUnits(ReportDateType type) {
    switch (type) {
        case ReportDateType::Weekly:
            return 200;
        case ReportDateType::Monthly:
            return 900;
        case ReportDateType::Yearly:
            return 9000;
        case ReportDateType::Daily:
            break;
    }
    return 30;
}

struct RowFrame {
    std::string developer;
    std::string begin;
    std::string end;
    std::size_t greatestUnits;
};

void appendRow(std::string& text, Random& random, const RowFrame& frame) {
    const Product& product = kProducts[pick(random, kProducts.size())];
    const Store& store = kStores[pick(random, kStores.size())];
    const std::size_t price = std::size_t{product.priceInCents} * store.centsPerTierCent;
    const std::size_t units = 1 + pick(random, frame.greatestUnits);
    const std::string_view promoCode = kPromoCodes[pick(random, kPromoCodes.size())];
    // The service keeps three tenths of the price.
    fmt::format_to(std::back_inserter(text),
                   "APPLE\tUS\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\n",
                   product.sku, frame.developer, product.title, product.version, product.typeIdentifier,
                   units, amountText(price * 7 / 10), frame.begin, frame.end, store.currency,
                   store.countryCode, store.currency, product.appleIdentifier, amountText(price), promoCode,
                   product.parentSku, product.subscription, product.period, product.category);
}

}  // namespace

ReportPeriod periodOf(ReportDateType type, std::chrono::year_month_day date) {
    using namespace std::chrono;
    switch (type) {
        case ReportDateType::Weekly:
            return {year_month_day(sys_days(date) - days(6)), date};
        case ReportDateType::Monthly:
            return {date.year() / date.month() / 1,
                    year_month_day(year_month_day_last(date.year() / date.month() / last))};
        case ReportDateType::Yearly:
            return {date.year() / January / 1, date.year() / December / 31};
        case ReportDateType::Daily:
            break;
    }
    return {date, date};
}

std::optional<std::string> MadeUpReportSource::report(std::string_view vendorId, ReportDateType type,
                                                      std::chrono::year_month_day date) {
    const ReportPeriod period = periodOf(type, date);
    const RowFrame frame{.developer = fmt::format("Vendor {}", vendorId),
                         .begin = dayText(period.begin),
                         .end = dayText(period.end),
                         .greatestUnits = greatestUnits(type)};
    Random random(seedOf(fmt::format("{}|{}|{}", vendorId, letterOf(type), frame.begin)));
    std::string text(kHeaderRow);
    do {
        appendRow(text, random, frame);
    } while (text.size() < reportSize_);
    return text;
}

}  // namespace corvane::demo
