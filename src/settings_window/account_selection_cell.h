#pragma once

#include <string>

#include "core/itunes_account.h"

namespace corvane {

/// What a row of the accounts table shows.
struct AccountSelectionCell {
    std::string title;     ///< the account's name; its e-mail where it has no name
    std::string subtitle;  ///< its e-mail

    bool operator==(const AccountSelectionCell&) const = default;
};

/// A field that the account does not have is shown as nothing; an empty name is a name.
AccountSelectionCell accountSelectionCell(const ITunesAccount& account);

}  // namespace corvane
