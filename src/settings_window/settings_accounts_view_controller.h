#pragma once

#include <memory>
#include <optional>
#include <string>

#include "core/itunes_account.h"
#include "platform/alerts.h"
#include "platform/localized_strings.h"
#include "platform/notification_center.h"
#include "settings/settings_manger.h"
#include "settings_window/accounts_view.h"
#include "settings_window/settings_view_controller.h"

namespace corvane {

/// The Accounts tab: the list of accounts, and the fields of the selected one. Every change is written to the
/// settings store at once. Main thread only.
///
/// The fields belong to the account whose texts they were filled with last, which is the selected one
/// whenever nothing is under way. A field's action commits to that account, also when the selection has moved
/// on before the action came, and to none when the account is gone or no account was shown. Selecting commits
/// nothing by itself; a field that is still being edited sends its action before the fields are filled anew.
class SettingsAccountsViewController final : public SettingsViewController, public AccountsViewEvents {
  public:
    /// All of them outlive the controller.
    struct Collaborators {
        SettingsManger& settings;
        Alerts& alerts;
        NotificationCenter& notificationCenter;
        const LocalizedStrings& strings;
    };

    SettingsAccountsViewController(std::unique_ptr<AccountsView> view, const Collaborators& collaborators);
    ~SettingsAccountsViewController() override;

    void viewDidLoad() override;
    void viewWillAppear() override;
    void viewWillDisappear() override;

    /// Takes the accounts from the store again and reloads the table.
    void reloadData();

    /// Asks for the vendor ID, again after each one that is no number or already in use, until the user gives
    /// a good one or cancels. The new account is selected.
    void addAccount() override;
    /// Asks first. The table is reloaded whatever the answer.
    void removeAccount() override;

    void updateButtons();
    void updateDetailView();

    void tableViewSelectionIsChanging() override;
    void tableViewSelectionDidChange() override;
    int numberOfRowsInTableView() const override;
    AccountSelectionCell viewForTableColumn(int row) const override;

    /// Null when no row is selected.
    std::shared_ptr<ITunesAccount> selectedAccount() const;

    void emailChangedAction() override;
    void passwordChangedAction() override;
    void nameChangedAction() override;

    /// Commits the fields to their account and writes the store's list back, also when nothing has changed. A
    /// store without a list is a fault.
    void updateAccount();

    /// Whether no account has that vendor ID yet. Every character counts.
    bool validateVendorID(const std::string& vendorID) const;

    const ITunesAccountList& accounts() const { return accounts_; }

  private:
    const std::shared_ptr<ITunesAccount>& accountAtRow(int row) const;
    void selectionChanged();
    void fillFields(const ITunesAccount& account);
    void setAccountsFromStore();
    void createAccount(const std::string& vendorID);
    void deleteSelectedAccount();
    AlertAnswer askForVendorID();
    bool confirmsDeletion();
    void commitPassword(const std::shared_ptr<ITunesAccount>& account);
    void commitName(const std::shared_ptr<ITunesAccount>& account);
    void commitEmail(const std::shared_ptr<ITunesAccount>& account);
    void post(const char* name, const std::shared_ptr<ITunesAccount>& account) const;

    const Collaborators with_;
    AccountsView& view_;
    ITunesAccountList accounts_;
    std::shared_ptr<ITunesAccount> shownAccount_;  ///< the one whose texts stand in the fields; may be null
};

}  // namespace corvane
