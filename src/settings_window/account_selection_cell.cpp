#include "settings_window/account_selection_cell.h"

namespace corvane {

AccountSelectionCell accountSelectionCell(const ITunesAccount& account) {
    const std::string email = account.email().value_or("");
    return {.title = account.name().value_or(email), .subtitle = email};
}

}  // namespace corvane
