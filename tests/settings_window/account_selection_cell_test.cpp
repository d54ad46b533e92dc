#include "settings_window/account_selection_cell.h"

#include <gtest/gtest.h>

#include "support/fake_accounts_view.h"

namespace corvane {

namespace {

TEST(AccountSelectionCellTest, ShowsTheNameOverTheEmail) {
    const struct {
        std::optional<std::string> name;
        std::optional<std::string> email;
        AccountSelectionCell cell;
    } rows[] = {
        {"Demo", "demo@example.com", {"Demo", "demo@example.com"}},
        {"Demo", std::nullopt, {"Demo", ""}},
        {"Demo", "", {"Demo", ""}},
        {std::nullopt, "demo@example.com", {"demo@example.com", "demo@example.com"}},
        {"", "demo@example.com", {"", "demo@example.com"}},
        {std::nullopt, "", {"", ""}},
        {std::nullopt, std::nullopt, {"", ""}},
    };
    for (const auto& row : rows) {
        ITunesAccount account("1", "");
        account.setName(row.name);
        account.setEmail(row.email);
        EXPECT_EQ(accountSelectionCell(account), row.cell);
    }
}

}  // namespace
}  // namespace corvane
