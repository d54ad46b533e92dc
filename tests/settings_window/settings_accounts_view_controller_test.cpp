#include "settings_window/settings_accounts_view_controller.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/itunes_account_archive.h"
#include "platform/memory/in_memory_key_value_store.h"
#include "platform/memory/scripted_alerts.h"
#include "platform/memory/source_language_strings.h"
#include "support/fake_accounts_view.h"

namespace corvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using SharedAccount = std::shared_ptr<ITunesAccount>;

constexpr auto name = AccountField::Name;
constexpr auto vendorID = AccountField::VendorID;
constexpr auto email = AccountField::Email;
constexpr auto password = AccountField::Password;

/// The settings window calls the tab: loaded once, and about to appear.
class AccountsTabTest : public testing::Test {
  protected:
    AccountsTabTest() {
        auto made = std::make_unique<test::FakeAccountsView>();
        view = made.get();
        controller = std::make_unique<SettingsAccountsViewController>(
            std::move(made),
            SettingsAccountsViewController::Collaborators{settings, alerts, notificationCenter, strings});
        for (const char* watched : {"kNotificationAccountNameChanged", "kNotificationAccountDetailsChanged"})
            notificationCenter.addObserver(watched,
                                           [this](const Notification& notification) { note(notification); });
    }

    /// With these accounts in the store.
    void appear(ITunesAccountList accounts = {}) {
        if (!accounts.empty())
            settings.setITunesAccounts(std::move(accounts));
        controller->viewDidLoad();
        controller->viewWillAppear();
        writesBefore = defaults.synchronizeCount();
    }

    static SharedAccount makeAccount(const std::string& id, const std::string& accountName,
                                     std::optional<std::string> accountEmail = {},
                                     std::optional<std::string> accountPassword = {}) {
        auto account = std::make_shared<ITunesAccount>(id, accountName);
        account->setEmail(std::move(accountEmail));
        account->setPassword(std::move(accountPassword));
        return account;
    }

    static SharedAccount completeAccount(const std::string& id) {
        return makeAccount(id, "Account " + id, id + "@example.com", "secret " + id);
    }

    void answerPrompt(const std::string& text) {
        alerts.prepareAnswer({.code = alertFirstButtonReturn, .accessoryText = text});
    }
    void acknowledge() { alerts.prepareAnswer({.code = alertFirstButtonReturn, .accessoryText = {}}); }
    void cancel() { alerts.prepareAnswer({.code = alertSecondButtonReturn, .accessoryText = "8123"}); }

    void add(const std::string& id) {
        answerPrompt(id);
        view->clickAdd();
    }

    int writes() const { return defaults.synchronizeCount() - writesBefore; }
    ITunesAccountList stored() const { return settings.iTunesAccounts().value_or(ITunesAccountList{}); }
    std::vector<std::string> messages() const {
        std::vector<std::string> texts;
        for (const Alert& alert : alerts.shown())
            texts.push_back(alert.messageText);
        return texts;
    }

    /// The accounts that a restart would find.
    ITunesAccountList persisted() const {
        const auto found = defaults.stored().find("settingsKeyItunesAccounts");
        const Bytes* archive = found == defaults.stored().end() ? nullptr : found->second.get<Bytes>();
        return archive ? unarchivedAccountList(*archive).value_or(ITunesAccountList{}) : ITunesAccountList{};
    }

    void expectFields(const std::string& id, const std::string& accountName, const std::string& accountEmail,
                      const std::string& accountPassword) const {
        EXPECT_EQ(view->text(vendorID), id);
        EXPECT_EQ(view->text(name), accountName);
        EXPECT_EQ(view->text(email), accountEmail);
        EXPECT_EQ(view->text(password), accountPassword);
    }

    void expectNothingShown() const {
        expectFields("", "", "", "");
        EXPECT_EQ(view->detailAlpha, 0.5);
        EXPECT_FALSE(view->isRemoveButtonEnabled);
        for (const AccountField field : {name, email, password})
            EXPECT_FALSE(view->isEnabled(field));
    }

    InMemoryKeyValueStore defaults;
    SettingsManger settings{defaults};
    ScriptedAlerts alerts;
    NotificationCenter notificationCenter;
    SourceLanguageStrings strings;
    test::FakeAccountsView* view = nullptr;
    std::unique_ptr<SettingsAccountsViewController> controller;
    int writesBefore = 0;

    struct Posted {
        std::string notification;
        const void* account;
        std::string recordAtThatTime;  // password, name, e-mail; "-" for an absent one
    };
    std::vector<Posted> posted;

    std::vector<std::string> postedNames() const {
        std::vector<std::string> names;
        for (const Posted& post : posted)
            names.push_back(post.notification);
        return names;
    }

  private:
    void note(const Notification& notification) {
        const auto* account = static_cast<const ITunesAccount*>(notification.object.get());
        posted.push_back({notification.name, account,
                          account->password().value_or("-") + "/" + account->name().value_or("-") + "/" +
                              account->email().value_or("-")});
    }
};

// What is shown.

TEST_F(AccountsTabTest, AnEmptyStoreShowsNoRowsAndNoDetails) {
    appear();
    EXPECT_THAT(view->rows(), IsEmpty());
    EXPECT_EQ(controller->numberOfRowsInTableView(), 0);
    expectNothingShown();
    EXPECT_EQ(controller->selectedAccount(), nullptr);
    EXPECT_EQ(writes(), 0);
}

TEST_F(AccountsTabTest, NeverTouchesTheVendorIDsFieldButToFillIt) {
    appear({completeAccount("1")});
    EXPECT_TRUE(view->isEnabled(vendorID));
    view->clickRow(0);
    EXPECT_TRUE(view->isEnabled(vendorID));
    view->commit(vendorID, "changed");
    EXPECT_EQ(stored()[0]->vendorID(), "1");
}

TEST_F(AccountsTabTest, ShowsTheStoresAccountsEachTimeItAppears) {
    appear({makeAccount("1", "First", "first@example.com"), makeAccount("2", "Second")});
    EXPECT_THAT(view->rows(), ElementsAre(AccountSelectionCell{"First", "first@example.com"},
                                          AccountSelectionCell{"Second", ""}));
    settings.setITunesAccounts(ITunesAccountList{makeAccount("3", "Third")});
    controller->viewWillAppear();
    EXPECT_THAT(view->rows(), ElementsAre(AccountSelectionCell{"Third", ""}));
    settings.setITunesAccounts(std::nullopt);
    controller->viewWillAppear();
    EXPECT_THAT(view->rows(), IsEmpty());
}

TEST_F(AccountsTabTest, ASelectedRowShowsItsAccount) {
    appear({completeAccount("1"), makeAccount("2", "Second")});
    view->clickRow(0);
    expectFields("1", "Account 1", "1@example.com", "secret 1");
    EXPECT_EQ(view->detailAlpha, 1.0);
    EXPECT_TRUE(view->isRemoveButtonEnabled);
    for (const AccountField field : {name, email, password})
        EXPECT_TRUE(view->isEnabled(field));
    EXPECT_EQ(controller->selectedAccount(), stored()[0]);

    view->clickRow(1);
    expectFields("2", "Second", "", "");

    view->clickRow(-1);
    expectNothingShown();
    EXPECT_EQ(writes(), 0);
    EXPECT_THAT(posted, IsEmpty());
}

TEST_F(AccountsTabTest, FollowsTheSelectionWhileTheMouseIsStillDown) {
    appear({completeAccount("1"), completeAccount("2")});
    view->moveSelectionSilently(1);
    view->tellSelectionIsChanging();
    expectFields("2", "Account 2", "2@example.com", "secret 2");
    EXPECT_TRUE(view->isRemoveButtonEnabled);
}

TEST_F(AccountsTabTest, AReloadClearsTheSelectionAndTheDetails) {
    appear({completeAccount("1")});
    view->clickRow(0);
    controller->reloadData();
    EXPECT_EQ(view->selectedRow(), -1);
    expectNothingShown();
}

TEST_F(AccountsTabTest, ARowOutOfRangeIsAFault) {
    appear({completeAccount("1")});
    EXPECT_DEATH(controller->viewForTableColumn(1), "out of range");
    EXPECT_DEATH(controller->viewForTableColumn(-1), "out of range");
    view->moveSelectionSilently(1);
    EXPECT_DEATH(view->tellSelectionDidChange(), "out of range");
}

TEST_F(AccountsTabTest, LetsGoOfTheViewWhenItGoes) {
    class WatchedView final : public AccountsView {
      public:
        explicit WatchedView(bool& hasEvents) : hasEvents_(hasEvents) {}
        void setEvents(AccountsViewEvents* events) override { hasEvents_ = events != nullptr; }
        int selectedRow() const override { return -1; }
        void selectRow(int /*row*/) override {}
        void reloadTable() override {}
        void reloadRow(int /*row*/) override {}
        void endEditing() override {}
        std::string text(AccountField /*field*/) const override { return {}; }
        void setText(AccountField /*field*/, const std::string& /*text*/) override {}
        void setEnabled(AccountField /*field*/, bool /*isEnabled*/) override {}
        void setDetailAlpha(double /*alpha*/) override {}
        void setRemoveButtonEnabled(bool /*isEnabled*/) override {}

      private:
        bool& hasEvents_;
    };
    bool hasEvents = false;
    {
        SettingsAccountsViewController tab(
            std::make_unique<WatchedView>(hasEvents),
            SettingsAccountsViewController::Collaborators{settings, alerts, notificationCenter, strings});
        EXPECT_FALSE(hasEvents);
        tab.viewDidLoad();
        EXPECT_TRUE(hasEvents);
    }
    EXPECT_FALSE(hasEvents);
}

// Adding.

TEST_F(AccountsTabTest, AsksForTheVendorIDWithAnEmptyField) {
    appear();
    cancel();
    view->clickAdd();
    ASSERT_THAT(alerts.shown(), SizeIs(1));
    const Alert& prompt = alerts.shown()[0];
    EXPECT_EQ(prompt.style, AlertStyle::Warning);
    EXPECT_EQ(prompt.messageText, "Please enter the vendor ID of the new account:");
    EXPECT_EQ(prompt.informativeText,
              R"(The vendor ID is required for automatic report updating.

You can find the vendor ID in the Sales and Trends section of iTunes Connect. Pressing on the top right menu  (labeled "Top Content") gives access to the Reports. There you can see the vendor selector with the following format: VendorName - VendorID
Please enter the vendor ID (numeric string) here.)");
    ASSERT_THAT(prompt.buttons, SizeIs(2));
    EXPECT_EQ(prompt.buttons[0].title, "Create Account");
    EXPECT_FALSE(prompt.buttons[0].isCancel);
    EXPECT_EQ(prompt.buttons[1].title, "Cancel");
    EXPECT_TRUE(prompt.buttons[1].isCancel);
    ASSERT_TRUE(prompt.accessory);
    EXPECT_EQ(prompt.accessory->placeholder, "Vendor ID");
}

TEST_F(AccountsTabTest, AddingToAFreshStoreCreatesTheListAndSelectsTheAccount) {
    appear();
    add("8123");
    ASSERT_THAT(stored(), SizeIs(1));
    const SharedAccount account = stored()[0];
    EXPECT_EQ(account->vendorID(), "8123");
    EXPECT_EQ(account->name(), "New Account");
    EXPECT_EQ(account->email(), std::nullopt);
    EXPECT_EQ(account->password(), std::nullopt);
    EXPECT_THAT(view->rows(), ElementsAre(AccountSelectionCell{"New Account", ""}));
    EXPECT_EQ(view->selectedRow(), 0);
    expectFields("8123", "New Account", "", "");
    EXPECT_TRUE(view->isRemoveButtonEnabled);
    ASSERT_THAT(postedNames(), ElementsAre("kNotificationAccountNameChanged"));
    EXPECT_EQ(posted[0].account, account.get());
    EXPECT_EQ(writes(), 1);
    ASSERT_THAT(persisted(), SizeIs(1));
    EXPECT_EQ(persisted()[0]->vendorID(), "8123");
}

TEST_F(AccountsTabTest, AppendsToTheAccountsThatAreThere) {
    appear({completeAccount("1"), completeAccount("2")});
    view->clickRow(0);
    add("3");
    EXPECT_THAT(stored(), SizeIs(3));
    EXPECT_EQ(stored()[2]->vendorID(), "3");
    EXPECT_EQ(view->selectedRow(), 2);
    expectFields("3", "New Account", "", "");
}

TEST_F(AccountsTabTest, AnnouncesTheNewAccountWhenItIsSelected) {
    appear({completeAccount("1")});
    int selectedThen = -1;
    notificationCenter.addObserver("kNotificationAccountNameChanged",
                                   [&](const Notification&) { selectedThen = view->selectedRow(); });
    add("2");
    EXPECT_EQ(selectedThen, 1);
}

TEST_F(AccountsTabTest, CancellingThePromptChangesNothing) {
    appear({completeAccount("1")});
    view->clickRow(0);
    cancel();
    view->clickAdd();
    EXPECT_EQ(view->selectedRow(), 0);
    EXPECT_EQ(view->reloadCount, 1);
    EXPECT_EQ(writes(), 0);
    EXPECT_THAT(stored(), SizeIs(1));
    EXPECT_THAT(posted, IsEmpty());
    EXPECT_EQ(alerts.beepCount(), 0);
}

TEST_F(AccountsTabTest, AnyAnswerButTheFirstButtonCancelsThePrompt) {
    appear();
    for (const int code : {0, 999, 1001, 1002, -1}) {
        alerts.prepareAnswer({.code = code, .accessoryText = "8123"});
        view->clickAdd();
    }
    EXPECT_THAT(alerts.shown(), SizeIs(5));
    EXPECT_THAT(stored(), IsEmpty());
}

TEST_F(AccountsTabTest, AsksAgainForAVendorIDThatIsNoNumber) {
    for (const char* text : {"81a3", "", "  ", "abc", "4.2"}) {
        appear();
        const std::size_t shownBefore = alerts.shown().size();
        const int beepsBefore = alerts.beepCount();
        answerPrompt(text);
        acknowledge();
        cancel();
        view->clickAdd();
        ASSERT_THAT(alerts.shown(), SizeIs(shownBefore + 3)) << text;
        const Alert& refusal = alerts.shown()[shownBefore + 1];
        EXPECT_EQ(refusal.style, AlertStyle::Warning);
        EXPECT_EQ(refusal.messageText, "The vendor ID must be a numberic string.");
        EXPECT_EQ(refusal.informativeText, "Please enter a valid vendor ID!");
        EXPECT_THAT(refusal.buttons, IsEmpty());
        EXPECT_FALSE(refusal.accessory);
        EXPECT_EQ(alerts.beepCount(), beepsBefore + 1) << text;
        EXPECT_TRUE(alerts.shown()[shownBefore + 2].accessory);
        EXPECT_EQ(settings.iTunesAccounts(), std::nullopt) << text;
    }
}

TEST_F(AccountsTabTest, BeepsBeforeItSaysThatTheVendorIDIsNoNumber) {
    appear();
    std::vector<int> beepsWhenOpened;
    alerts.whileOpen([&](const Alert&) { beepsWhenOpened.push_back(alerts.beepCount()); });
    answerPrompt("x");
    acknowledge();
    cancel();
    view->clickAdd();
    EXPECT_THAT(beepsWhenOpened, ElementsAre(0, 1, 1));
}

TEST_F(AccountsTabTest, AsksAgainForAVendorIDThatIsInUse) {
    appear({completeAccount("8123")});
    answerPrompt("8123");
    acknowledge();
    cancel();
    view->clickAdd();
    EXPECT_THAT(messages(), ElementsAre("Please enter the vendor ID of the new account:",
                                        "The vendor ID is already used for another account.",
                                        "Please enter the vendor ID of the new account:"));
    const Alert& refusal = alerts.shown()[1];
    EXPECT_EQ(refusal.informativeText, "The vendor ID must be unique!");
    EXPECT_THAT(refusal.buttons, IsEmpty());
    EXPECT_EQ(alerts.beepCount(), 0);
    EXPECT_THAT(stored(), SizeIs(1));
    EXPECT_EQ(writes(), 0);
    EXPECT_THAT(posted, IsEmpty());
}

TEST_F(AccountsTabTest, GoesOnAskingUntilTheVendorIDIsGood) {
    appear({completeAccount("1")});
    for (int attempt = 0; attempt < 1000; ++attempt) {
        answerPrompt(attempt % 2 == 0 ? "no number" : "1");
        acknowledge();
    }
    add("2");
    EXPECT_THAT(alerts.shown(), SizeIs(2001));
    EXPECT_EQ(alerts.beepCount(), 500);
    EXPECT_THAT(stored(), SizeIs(2));
    EXPECT_EQ(postedNames(), std::vector<std::string>{"kNotificationAccountNameChanged"});
}

TEST_F(AccountsTabTest, KeepsTheVendorIDExactlyAsTyped) {
    appear();
    const char* const texts[] = {" 777 ", "777", "0777", "+777", "-777", "99999999999999999999"};
    for (const char* text : texts)
        add(text);
    ASSERT_THAT(stored(), SizeIs(std::size(texts)));
    for (std::size_t i = 0; i < std::size(texts); ++i)
        EXPECT_EQ(stored()[i]->vendorID(), texts[i]);
    answerPrompt(" 777 ");
    acknowledge();
    cancel();
    view->clickAdd();
    EXPECT_THAT(stored(), SizeIs(std::size(texts)));
}

TEST_F(AccountsTabTest, AVendorIDIsFreeWhenNoAccountHasItExactly) {
    auto withoutID = completeAccount("gone");
    withoutID->setVendorID(std::nullopt);
    appear();
    EXPECT_TRUE(controller->validateVendorID("1"));
    appear({completeAccount("1"), withoutID, completeAccount("Ab")});
    EXPECT_FALSE(controller->validateVendorID("1"));
    EXPECT_FALSE(controller->validateVendorID("Ab"));
    for (const char* free : {"", " 1", "1 ", "01", "ab", "AB", "2"})
        EXPECT_TRUE(controller->validateVendorID(free)) << free;
}

// Committing.

TEST_F(AccountsTabTest, TheFirstCommitOfANewAccountStoresEmptyTexts) {
    appear();
    add("8123");
    posted.clear();
    writesBefore = defaults.synchronizeCount();
    view->pressReturn(name);
    EXPECT_EQ(stored()[0]->email(), "");
    EXPECT_EQ(stored()[0]->password(), "");
    EXPECT_THAT(postedNames(),
                ElementsAre("kNotificationAccountDetailsChanged", "kNotificationAccountDetailsChanged"));
    EXPECT_EQ(writes(), 1);
    EXPECT_EQ(persisted()[0]->email(), "");
}

TEST_F(AccountsTabTest, EveryFieldsActionCommitsAllThree) {
    for (const AccountField field : {name, email, password}) {
        appear({completeAccount("1")});
        view->clickRow(0);
        view->replaceText(name, "New name");
        view->replaceText(email, "new@example.com");
        view->replaceText(password, "new secret");
        view->pressReturn(field);
        EXPECT_EQ(stored()[0]->name(), "New name");
        EXPECT_EQ(stored()[0]->email(), "new@example.com");
        EXPECT_EQ(stored()[0]->password(), "new secret");
        EXPECT_EQ(writes(), 1);
    }
}

TEST_F(AccountsTabTest, ObserversSeeTheOldPasswordAndEmailAndTheNewName) {
    appear({makeAccount("1", "name", "email", "password")});
    view->clickRow(0);
    view->replaceText(name, "NAME");
    view->replaceText(email, "EMAIL");
    view->replaceText(password, "PASSWORD");
    view->pressReturn(email);
    ASSERT_THAT(posted, SizeIs(4));
    const struct {
        const char* notification;
        const char* record;
    } expected[] = {
        {"kNotificationAccountDetailsChanged", "password/name/email"},
        {"kNotificationAccountNameChanged", "PASSWORD/NAME/email"},
        {"kNotificationAccountDetailsChanged", "PASSWORD/NAME/email"},
        {"kNotificationAccountDetailsChanged", "PASSWORD/NAME/email"},
    };
    for (std::size_t i = 0; i < posted.size(); ++i) {
        EXPECT_EQ(posted[i].notification, expected[i].notification) << i;
        EXPECT_EQ(posted[i].recordAtThatTime, expected[i].record) << i;
        EXPECT_EQ(posted[i].account, stored()[0].get()) << i;
    }
}

TEST_F(AccountsTabTest, ChangingTheNameAloneAnnouncesItAndUpdatesItsRow) {
    appear({completeAccount("1"), completeAccount("2")});
    view->clickRow(1);
    view->commit(name, "Renamed");
    EXPECT_EQ(stored()[1]->name(), "Renamed");
    EXPECT_THAT(postedNames(),
                ElementsAre("kNotificationAccountNameChanged", "kNotificationAccountDetailsChanged"));
    EXPECT_EQ(view->rows()[1].title, "Renamed");
    EXPECT_THAT(view->reloadedRows, ElementsAre(1));
    EXPECT_EQ(view->selectedRow(), 1);
    EXPECT_EQ(view->reloadCount, 1);
    EXPECT_EQ(writes(), 1);
    EXPECT_EQ(persisted()[1]->name(), "Renamed");
}

TEST_F(AccountsTabTest, CommittingUnchangedFieldsAnnouncesNothingAndWritesAllTheSame) {
    appear({completeAccount("1")});
    view->clickRow(0);
    view->pressReturn(password);
    EXPECT_THAT(posted, IsEmpty());
    EXPECT_EQ(writes(), 1);
}

TEST_F(AccountsTabTest, AnAbsentNameBecomesAnEmptyOneWithTheFirstCommit) {
    auto account = completeAccount("1");
    account->setName(std::nullopt);
    appear({account});
    EXPECT_EQ(view->rows()[0].title, "1@example.com");
    view->clickRow(0);
    view->pressReturn(email);
    EXPECT_EQ(account->name(), "");
    EXPECT_EQ(view->rows()[0].title, "");
    EXPECT_THAT(postedNames(),
                ElementsAre("kNotificationAccountNameChanged", "kNotificationAccountDetailsChanged"));
}

TEST_F(AccountsTabTest, ACaseOrABlankMakesAnotherText) {
    appear({makeAccount("1", "name", "email", "password")});
    view->clickRow(0);
    view->commit(name, "Name");
    view->commit(email, "email ");
    view->commit(password, " password");
    EXPECT_EQ(stored()[0]->name(), "Name");
    EXPECT_EQ(stored()[0]->email(), "email ");
    EXPECT_EQ(stored()[0]->password(), " password");
}

TEST_F(AccountsTabTest, DisappearingCommitsWhatStandsInTheFields) {
    appear({completeAccount("1")});
    view->clickRow(0);
    view->type(password, "half typed");
    controller->viewWillDisappear();
    EXPECT_EQ(stored()[0]->password(), "half typed");
    EXPECT_EQ(writes(), 1);
}

TEST_F(AccountsTabTest, WithNothingSelectedNothingIsCommitted) {
    appear({completeAccount("1")});
    controller->viewWillDisappear();
    view->pressReturn(name);
    EXPECT_EQ(writes(), 0);
    EXPECT_THAT(posted, IsEmpty());
    EXPECT_EQ(stored()[0]->name(), "Account 1");
}

TEST_F(AccountsTabTest, CommittingWithoutAListInTheStoreIsAFault) {
    appear({completeAccount("1")});
    view->clickRow(0);
    settings.setITunesAccounts(std::nullopt);
    EXPECT_DEATH(view->pressReturn(name), "no list of accounts");
}

TEST_F(AccountsTabTest, ACommitAmongManyAccountsIsOneWriteAndOneRow) {
    ITunesAccountList accounts;
    for (int i = 0; i < 300; ++i)
        accounts.push_back(completeAccount(std::to_string(i)));
    appear(accounts);
    view->clickRow(299);
    view->commit(name, "Last");
    EXPECT_EQ(writes(), 1);
    EXPECT_THAT(view->reloadedRows, ElementsAre(299));
    EXPECT_EQ(view->reloadCount, 1);
    view->clickRow(0);
    EXPECT_EQ(writes(), 1);
    EXPECT_EQ(view->reloadCount, 1);
    add("300");
    EXPECT_EQ(writes(), 2);
    EXPECT_EQ(view->reloadCount, 2);
    EXPECT_EQ(view->selectedRow(), 300);
}

// Edits and the account that they were typed for.

TEST_F(AccountsTabTest, SelectingByItselfCommitsNothing) {
    appear({completeAccount("1"), completeAccount("2")});
    view->clickRow(0);
    view->replaceText(name, "never sent");
    view->clickRow(1);
    expectFields("2", "Account 2", "2@example.com", "secret 2");
    EXPECT_EQ(stored()[0]->name(), "Account 1");
    EXPECT_EQ(stored()[1]->name(), "Account 2");
    EXPECT_EQ(writes(), 0);
}

TEST_F(AccountsTabTest, AFieldThatLosesTheFocusToTheTableCommitsToItsAccount) {
    appear({completeAccount("1"), completeAccount("2")});
    for (const AccountField field : {name, email, password}) {
        view->clickRow(0);
        view->type(field, "typed");
        view->clickRow(1);
        expectFields("2", "Account 2", "2@example.com", "secret 2");
    }
    EXPECT_EQ(stored()[0]->name(), "typed");
    EXPECT_EQ(stored()[0]->email(), "typed");
    EXPECT_EQ(stored()[0]->password(), "typed");
    EXPECT_EQ(view->rows()[0], (AccountSelectionCell{"typed", "typed"}));
    EXPECT_EQ(writes(), 3);
}

TEST_F(AccountsTabTest, AnEditEndsBeforeASelectionThatMovesWithoutTheFocusIsShown) {
    appear({completeAccount("1"), completeAccount("2")});
    view->clickRow(0);
    view->type(name, "typed for 1");
    view->moveSelectionSilently(1);
    view->tellSelectionIsChanging();
    view->tellSelectionDidChange();
    EXPECT_EQ(stored()[0]->name(), "typed for 1");
    EXPECT_EQ(stored()[1]->name(), "Account 2");
    EXPECT_EQ(view->rows()[0].title, "typed for 1");
    expectFields("2", "Account 2", "2@example.com", "secret 2");
    EXPECT_EQ(writes(), 1);
}

TEST_F(AccountsTabTest, AnActionThatComesAfterTheSelectionHasMovedCommitsToTheAccountShown) {
    appear({completeAccount("1"), completeAccount("2")});
    for (const int row : {1, -1}) {
        view->clickRow(0);
        view->replaceText(email, "typed for 1");
        view->moveSelectionSilently(row);
        view->pressReturn(email);
        EXPECT_EQ(stored()[0]->email(), "typed for 1");
        EXPECT_EQ(stored()[1]->email(), "2@example.com");
        EXPECT_EQ(view->rows()[0].subtitle, "typed for 1");
        view->tellSelectionDidChange();
    }
}

TEST_F(AccountsTabTest, AnActionWhileNoAccountIsShownCommitsNothing) {
    appear({completeAccount("1")});
    view->moveSelectionSilently(0);
    view->pressReturn(name);
    EXPECT_EQ(stored()[0]->name(), "Account 1");
    EXPECT_EQ(writes(), 0);
}

TEST_F(AccountsTabTest, AnActionOfAFieldThatIsBeingDisabledCommitsNothing) {
    appear({completeAccount("1")});
    view->clickRow(0);
    view->sendsActionWhenDisabled = true;
    view->clickRow(-1);
    EXPECT_EQ(stored()[0]->name(), "Account 1");
    EXPECT_EQ(stored()[0]->password(), "secret 1");
    EXPECT_EQ(writes(), 0);
}

TEST_F(AccountsTabTest, AnEditEndsBeforeTheTableIsReloaded) {
    appear({completeAccount("1")});
    view->clickRow(0);
    view->type(name, "typed");
    controller->reloadData();
    EXPECT_EQ(stored()[0]->name(), "typed");
    EXPECT_EQ(view->rows()[0].title, "typed");
    expectNothingShown();
}

TEST_F(AccountsTabTest, AddingKeepsWhatWasTypedForTheAccountSelectedBefore) {
    appear({completeAccount("1")});
    view->clickRow(0);
    view->type(password, "typed for 1");
    add("2");
    EXPECT_EQ(stored()[0]->password(), "typed for 1");
    EXPECT_EQ(stored()[1]->password(), std::nullopt);
    expectFields("2", "New Account", "", "");
}

TEST_F(AccountsTabTest, CancellingThePromptLeavesTheEditingGoingOn) {
    appear({completeAccount("1")});
    view->clickRow(0);
    view->type(name, "half");
    cancel();
    view->clickAdd();
    EXPECT_EQ(view->text(name), "half");
    EXPECT_EQ(stored()[0]->name(), "Account 1");
    view->commit(name, "half and half");
    EXPECT_EQ(stored()[0]->name(), "half and half");
}

TEST_F(AccountsTabTest, DisappearingAndAppearingAgainKeepsTheEditAndClearsTheDetails) {
    appear({completeAccount("1"), completeAccount("2")});
    view->clickRow(1);
    view->type(email, "typed for 2");
    controller->viewWillDisappear();
    controller->viewWillAppear();
    EXPECT_EQ(stored()[0]->email(), "1@example.com");
    EXPECT_EQ(stored()[1]->email(), "typed for 2");
    expectNothingShown();
}

// Removing.

TEST_F(AccountsTabTest, AsksBeforeRemoving) {
    appear({completeAccount("1")});
    view->clickRow(0);
    cancel();
    view->clickRemove();
    ASSERT_THAT(alerts.shown(), SizeIs(1));
    const Alert& question = alerts.shown()[0];
    EXPECT_EQ(question.style, AlertStyle::Warning);
    EXPECT_EQ(question.messageText, "Do you want to delete the account?");
    EXPECT_EQ(question.informativeText, "");
    ASSERT_THAT(question.buttons, SizeIs(2));
    EXPECT_EQ(question.buttons[0].title, "Delete");
    EXPECT_FALSE(question.buttons[0].isCancel);
    EXPECT_EQ(question.buttons[1].title, "Cancel");
    EXPECT_TRUE(question.buttons[1].isCancel);
    EXPECT_FALSE(question.accessory);
}

TEST_F(AccountsTabTest, RemovesTheSelectedAccountAndNoOther) {
    const ITunesAccountList accounts{completeAccount("1"), completeAccount("1"), completeAccount("3")};
    for (int row = 0; row < 3; ++row) {
        appear(accounts);
        view->clickRow(row);
        acknowledge();
        view->clickRemove();
        ITunesAccountList expected = accounts;
        expected.erase(expected.begin() + row);
        EXPECT_EQ(stored(), expected) << row;
        EXPECT_EQ(controller->accounts(), expected) << row;
        EXPECT_THAT(view->rows(), SizeIs(2));
        expectNothingShown();
        EXPECT_EQ(writes(), 1);
        EXPECT_THAT(persisted(), SizeIs(2));
    }
    EXPECT_THAT(posted, IsEmpty());
}

TEST_F(AccountsTabTest, RemovingTheLastAccountLeavesAnEmptyList) {
    appear({completeAccount("1")});
    view->clickRow(0);
    acknowledge();
    view->clickRemove();
    ASSERT_TRUE(settings.iTunesAccounts());
    EXPECT_THAT(*settings.iTunesAccounts(), IsEmpty());
    expectNothingShown();
}

TEST_F(AccountsTabTest, CancellingTheRemovalReloadsTheTable) {
    appear({completeAccount("1")});
    for (const int code : {0, 1001, 1002}) {
        view->clickRow(0);
        const int reloadsBefore = view->reloadCount;
        alerts.prepareAnswer({.code = code, .accessoryText = {}});
        view->clickRemove();
        EXPECT_EQ(view->reloadCount, reloadsBefore + 1);
        expectNothingShown();
    }
    EXPECT_THAT(stored(), SizeIs(1));
    EXPECT_EQ(writes(), 0);
}

TEST_F(AccountsTabTest, ConfirmingARemovalWithNothingSelectedRemovesNothing) {
    appear({completeAccount("1")});
    acknowledge();
    view->clickRemove();
    EXPECT_THAT(stored(), SizeIs(1));
    EXPECT_EQ(view->reloadCount, 2);
    EXPECT_FALSE(view->isRemoveButtonEnabled);
    EXPECT_EQ(writes(), 0);
}

TEST_F(AccountsTabTest, AnAccountThatTheStoreHasLostIsNotRemovedOnceMore) {
    appear({completeAccount("1"), completeAccount("2")});
    view->clickRow(0);
    settings.setITunesAccounts(ITunesAccountList{completeAccount("1")});
    writesBefore = defaults.synchronizeCount();
    acknowledge();
    view->clickRemove();
    EXPECT_THAT(stored(), SizeIs(1));
    EXPECT_EQ(writes(), 0);
    EXPECT_THAT(view->rows(), SizeIs(1));
}

TEST_F(AccountsTabTest, RemovingFromAStoreWithoutAListEmptiesTheTable) {
    appear({completeAccount("1")});
    view->clickRow(0);
    settings.setITunesAccounts(std::nullopt);
    acknowledge();
    view->clickRemove();
    EXPECT_EQ(settings.iTunesAccounts(), std::nullopt);
    EXPECT_THAT(view->rows(), IsEmpty());
    expectNothingShown();
}

TEST_F(AccountsTabTest, WhatWasTypedForARemovedAccountGoesWithIt) {
    for (const int row : {0, 1}) {
        appear({completeAccount("1"), completeAccount("2")});
        const SharedAccount removed = stored()[static_cast<std::size_t>(row)];
        view->clickRow(row);
        view->type(name, "typed in vain");
        acknowledge();
        view->clickRemove();
        ASSERT_THAT(stored(), SizeIs(1));
        EXPECT_EQ(stored()[0]->name(), row == 0 ? "Account 2" : "Account 1");
        EXPECT_NE(removed->name(), "typed in vain");
        EXPECT_EQ(writes(), 1);
        expectNothingShown();
    }
    EXPECT_THAT(posted, IsEmpty());
}

TEST_F(AccountsTabTest, CancellingTheRemovalKeepsWhatWasTyped) {
    appear({completeAccount("1"), completeAccount("2")});
    view->clickRow(1);
    view->type(name, "typed for 2");
    cancel();
    view->clickRemove();
    EXPECT_EQ(stored()[0]->name(), "Account 1");
    EXPECT_EQ(stored()[1]->name(), "typed for 2");
    expectNothingShown();
}

}  // namespace
}  // namespace corvane
