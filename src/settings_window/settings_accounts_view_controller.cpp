#include "settings_window/settings_accounts_view_controller.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "platform/fatal_error.h"
#include "settings_window/account_notification_names.h"
#include "settings_window/vendor_id.h"

namespace corvane {

namespace {

constexpr double alphaWithAccount = 1.0;
constexpr double alphaWithoutAccount = 0.5;

/// By identity: two accounts with the same fields are two accounts.
ITunesAccountList::const_iterator find(const ITunesAccountList& accounts,
                                       const std::shared_ptr<ITunesAccount>& account) {
    return std::find(accounts.begin(), accounts.end(), account);
}

}  // namespace

SettingsAccountsViewController::SettingsAccountsViewController(std::unique_ptr<AccountsView> view,
                                                               const Collaborators& collaborators)
    : SettingsViewController(std::move(view), "settingsAccountsIdentifier",
                             collaborators.strings.localizedString("Accounts", "Settings Toolbar Item"),
                             "NSImageNameUserAccounts"),
      with_(collaborators),
      view_(static_cast<AccountsView&>(SettingsViewController::view())) {}

SettingsAccountsViewController::~SettingsAccountsViewController() {
    view_.setEvents(nullptr);
}

void SettingsAccountsViewController::viewDidLoad() {
    view_.setEvents(this);
    updateDetailView();
    updateButtons();
}

void SettingsAccountsViewController::viewWillAppear() {
    reloadData();
}

void SettingsAccountsViewController::viewWillDisappear() {
    updateAccount();
}

void SettingsAccountsViewController::reloadData() {
    view_.endEditing();
    setAccountsFromStore();
    view_.reloadTable();
}

void SettingsAccountsViewController::setAccountsFromStore() {
    accounts_ = with_.settings.iTunesAccounts().value_or(ITunesAccountList{});
}

void SettingsAccountsViewController::updateButtons() {
    view_.setRemoveButtonEnabled(view_.selectedRow() >= 0);
}

void SettingsAccountsViewController::tableViewSelectionIsChanging() {
    selectionChanged();
}

void SettingsAccountsViewController::tableViewSelectionDidChange() {
    selectionChanged();
}

void SettingsAccountsViewController::selectionChanged() {
    view_.endEditing();
    updateButtons();
    updateDetailView();
}

int SettingsAccountsViewController::numberOfRowsInTableView() const {
    return static_cast<int>(accounts_.size());
}

AccountSelectionCell SettingsAccountsViewController::viewForTableColumn(int row) const {
    return accountSelectionCell(*accountAtRow(row));
}

const std::shared_ptr<ITunesAccount>& SettingsAccountsViewController::accountAtRow(int row) const {
    if (row < 0 || row >= numberOfRowsInTableView())
        fatalError("a row of the accounts table is out of range");
    return accounts_[static_cast<std::size_t>(row)];
}

std::shared_ptr<ITunesAccount> SettingsAccountsViewController::selectedAccount() const {
    const int row = view_.selectedRow();
    return row < 0 ? nullptr : accountAtRow(row);
}

void SettingsAccountsViewController::updateDetailView() {
    shownAccount_ = nullptr;  // an action that comes while the fields are filled commits nothing
    for (const AccountField field :
         {AccountField::Email, AccountField::VendorID, AccountField::Password, AccountField::Name})
        view_.setText(field, "");
    const std::shared_ptr<ITunesAccount> account = selectedAccount();
    view_.setDetailAlpha(account ? alphaWithAccount : alphaWithoutAccount);
    if (account)
        fillFields(*account);
    shownAccount_ = account;
    for (const AccountField field : {AccountField::Email, AccountField::Name, AccountField::Password})
        view_.setEnabled(field, account != nullptr);
}

void SettingsAccountsViewController::fillFields(const ITunesAccount& account) {
    const auto fill = [this](AccountField field, const std::optional<std::string>& text) {
        if (text)
            view_.setText(field, *text);
    };
    fill(AccountField::Name, account.name());
    fill(AccountField::VendorID, account.vendorID());
    fill(AccountField::Email, account.email());
    fill(AccountField::Password, account.password());
}

void SettingsAccountsViewController::emailChangedAction() {
    updateAccount();
}

void SettingsAccountsViewController::passwordChangedAction() {
    updateAccount();
}

void SettingsAccountsViewController::nameChangedAction() {
    updateAccount();
}

void SettingsAccountsViewController::updateAccount() {
    const std::shared_ptr<ITunesAccount> account = shownAccount_;
    if (!account)
        return;
    if (const auto stored = with_.settings.iTunesAccounts();
        stored && find(*stored, account) == stored->end())
        return;  // removed while its texts were still in the fields
    commitPassword(account);
    commitName(account);
    commitEmail(account);
    if (const auto position = find(accounts_, account); position != accounts_.end())
        view_.reloadRow(static_cast<int>(position - accounts_.begin()));

    // The record is the one in the store's list, so writing the list back stores the edit.
    const std::optional<ITunesAccountList> accounts = with_.settings.iTunesAccounts();
    with_.settings.setITunesAccounts(accounts);
    if (!accounts)
        fatalError("an account was edited but the settings hold no list of accounts");
    accounts_ = *accounts;
}

// Observers see the old password and the old e-mail, but the new name.

void SettingsAccountsViewController::commitPassword(const std::shared_ptr<ITunesAccount>& account) {
    const std::string text = view_.text(AccountField::Password);
    if (account->password() == text)
        return;
    post(kNotificationAccountDetailsChanged, account);
    account->setPassword(text);
}

void SettingsAccountsViewController::commitName(const std::shared_ptr<ITunesAccount>& account) {
    const std::string text = view_.text(AccountField::Name);
    if (account->name() == text)
        return;
    account->setName(text);
    post(kNotificationAccountNameChanged, account);
    post(kNotificationAccountDetailsChanged, account);
}

void SettingsAccountsViewController::commitEmail(const std::shared_ptr<ITunesAccount>& account) {
    const std::string text = view_.text(AccountField::Email);
    if (account->email() == text)
        return;
    post(kNotificationAccountDetailsChanged, account);
    account->setEmail(text);
}

void SettingsAccountsViewController::post(const char* name,
                                          const std::shared_ptr<ITunesAccount>& account) const {
    with_.notificationCenter.post({.name = name, .object = account});
}

void SettingsAccountsViewController::addAccount() {
    const LocalizedStrings& strings = with_.strings;
    while (true) {
        const AlertAnswer answer = askForVendorID();
        if (answer.code != alertFirstButtonReturn)
            return;
        const std::string& vendorID = answer.accessoryText;
        if (!isNumericVendorID(vendorID)) {
            with_.alerts.beep();
            with_.alerts.runModal({.style = AlertStyle::Warning,
                                   .messageText = strings.localizedString(
                                       "The vendor ID must be a numberic string.", "Enter vendor ID"),
                                   .informativeText = strings.localizedString(
                                       "Please enter a valid vendor ID!", "Enter vendor ID"),
                                   .buttons = {},
                                   .accessory = {}});
        } else if (!validateVendorID(vendorID)) {
            with_.alerts.runModal(
                {.style = AlertStyle::Warning,
                 .messageText = strings.localizedString("The vendor ID is already used for another account.",
                                                        "Enter vendor ID"),
                 .informativeText =
                     strings.localizedString("The vendor ID must be unique!", "Enter vendor ID"),
                 .buttons = {},
                 .accessory = {}});
        } else {
            createAccount(vendorID);
            return;
        }
    }
}

AlertAnswer SettingsAccountsViewController::askForVendorID() {
    const LocalizedStrings& strings = with_.strings;
    return with_.alerts.runModal(
        {.style = AlertStyle::Warning,
         .messageText =
             strings.localizedString("Please enter the vendor ID of the new account:", "Enter vendor ID"),
         .informativeText = strings.localizedString(
             "The vendor ID is required for automatic report updating.\n\n"
             "You can find the vendor ID in the Sales and Trends section of iTunes Connect. "
             "Pressing on the top right menu  (labeled \"Top Content\") gives access to the Reports. "
             "There you can see the vendor selector with the following format: VendorName - VendorID\n"
             "Please enter the vendor ID (numeric string) here.",
             "Enter vendor ID"),
         .buttons = {{.title = strings.localizedString("Create Account", "Enter vendor ID")},
                     {.title = strings.localizedString("Cancel", "Enter vendor ID"), .isCancel = true}},
         .accessory = AlertTextField{strings.localizedString("Vendor ID", "Enter vendor ID")}});
}

bool SettingsAccountsViewController::validateVendorID(const std::string& vendorID) const {
    return std::none_of(accounts_.begin(), accounts_.end(),
                        [&](const auto& account) { return account->vendorID() == vendorID; });
}

void SettingsAccountsViewController::createAccount(const std::string& vendorID) {
    const auto account = std::make_shared<ITunesAccount>(
        vendorID, with_.strings.localizedString("New Account", "New Account"));
    ITunesAccountList stored = with_.settings.iTunesAccounts().value_or(ITunesAccountList{});
    stored.push_back(account);
    with_.settings.setITunesAccounts(std::move(stored));
    reloadData();
    if (const auto position = find(accounts_, account); position != accounts_.end())
        view_.selectRow(static_cast<int>(position - accounts_.begin()));
    post(kNotificationAccountNameChanged, account);
}

void SettingsAccountsViewController::removeAccount() {
    if (confirmsDeletion())
        deleteSelectedAccount();
    reloadData();
    updateButtons();
}

bool SettingsAccountsViewController::confirmsDeletion() {
    const LocalizedStrings& strings = with_.strings;
    const AlertAnswer answer = with_.alerts.runModal(
        {.style = AlertStyle::Warning,
         .messageText =
             strings.localizedString("Do you want to delete the account?", "Delete account question message"),
         .informativeText = {},
         .buttons = {{.title = strings.localizedString("Delete", "Delete account question button title")},
                     {.title = strings.localizedString("Cancel", "Delete account question title"),
                      .isCancel = true}},
         .accessory = {}});
    return answer.code == alertFirstButtonReturn;
}

void SettingsAccountsViewController::deleteSelectedAccount() {
    const std::shared_ptr<ITunesAccount> account = selectedAccount();
    std::optional<ITunesAccountList> stored = with_.settings.iTunesAccounts();
    if (!account || !stored)
        return;
    const auto position = find(*stored, account);
    if (position == stored->end())
        return;
    stored->erase(position);
    with_.settings.setITunesAccounts(stored);
    accounts_ = *stored;
}

}  // namespace corvane
