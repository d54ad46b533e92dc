#include <gmock/gmock.h>

#include <QAccessible>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QToolBar>
#include <array>
#include <memory>
#include <random>

#include "desktop/accounts_table_model.h"
#include "desktop/desktop_environment.h"
#include "desktop/qt_text.h"
#include "desktop/user_input.h"

namespace corvane {
namespace {

using test::AlertSteps;
using test::clickAt;
using test::clickOn;
using test::pressKey;
using test::typeText;
using testing::ElementsAre;

/// The settings window with the accounts 100, 101 and 102, and a user before it.
class SettingsWindows : public test::DesktopEnvironment {
  public:
    explicit SettingsWindows(LocalizedStrings& localizedTexts, int accountCount = 3)
        : DesktopEnvironment(localizedTexts) {
        for (int number = 0; number < accountCount; ++number)
            accounts.push_back(addAccount(std::to_string(100 + number)));
        launch();
        showTab(1);
        regainKeyboard();
    }

    template <typename Widget>
    Widget& find(const char* name) {
        for (auto* widget : QApplication::allWidgets()) {
            if (auto* found = qobject_cast<Widget*>(widget); found != nullptr && widget->objectName() == name)
                return *found;
        }
        qFatal("there is no %s", name);
    }
    QListView& table() { return find<QListView>("accounts"); }
    QLineEdit& field(const char* name) { return find<QLineEdit>(name); }
    QPushButton& button(const char* name) { return find<QPushButton>(name); }

    /// What a window manager does when an alert or another window is gone.
    void regainKeyboard() {
        window().activateWindow();
        if (!waitUntil([this] { return QApplication::focusWindow() == window().windowHandle(); }))
            qFatal("the window does not become active");
    }

    void showTab(int index) {
        auto& toolbar = find<QToolBar>("tabs");
        clickOn(*toolbar.widgetForAction(toolbar.actions().at(index)));
    }
    bool isTabShown(int index) { return find<QToolBar>("tabs").actions().at(index)->isChecked(); }
    void clickRow(int row, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        const QModelIndex index = table().model()->index(row, 0);
        table().scrollTo(index);
        clickAt(*table().viewport(), table().visualRect(index).center(), modifiers);
    }
    int selectedRow() {
        const auto rows = table().selectionModel()->selectedIndexes();
        return rows.isEmpty() ? -1 : rows.front().row();
    }
    std::string title(int row) {
        return toUtf8(table().model()->index(row, 0).data(Qt::DisplayRole).toString());
    }
    std::string subtitle(int row) {
        return toUtf8(table().model()->index(row, 0).data(AccountsTableModel::SubtitleRole).toString());
    }

    ITunesAccountList accounts;
};

using Fields = std::array<std::optional<std::string>, 4>;

Fields fieldsOf(const ITunesAccount& account) {
    return {account.name(), account.vendorID(), account.email(), account.password()};
}

std::vector<Fields> fieldsOf(const ITunesAccountList& accounts) {
    std::vector<Fields> fields;
    for (const auto& account : accounts)
        fields.push_back(fieldsOf(*account));
    return fields;
}

AlertSteps::Step key(Qt::Key key) {
    return [key](QDialog&) { pressKey(key); };
}

AlertSteps::Step text(const std::string& text, Qt::Key key) {
    return [text, key](QDialog&) {
        typeText(text);
        pressKey(key);
    };
}

/// One way to leave a field in which the user has just typed.
struct Departure {
    enum class Edit {
        IsKept,
        MayBeLost,  ///< the program ends, or the account is removed
    };
    const char* name;
    Edit edit;
    void (*leave)(std::unique_ptr<SettingsWindows>&);
};

using Windows = std::unique_ptr<SettingsWindows>;

constexpr Departure::Edit isKept = Departure::Edit::IsKept;
constexpr Departure::Edit mayBeLost = Departure::Edit::MayBeLost;

void goToTableAndPress(Qt::Key key, SettingsWindows& windows) {
    while (QApplication::focusWidget() != &windows.table())
        pressKey(Qt::Key_Backtab, Qt::ShiftModifier);
    pressKey(key);
}

void withAlert(std::vector<AlertSteps::Step> steps, const std::function<void()>& action) {
    const AlertSteps alertSteps(std::move(steps));
    action();
    EXPECT_TRUE(alertSteps.wereAllTaken());
}

const std::vector<Departure>& departures() {
    static const std::vector<Departure> all{
        {"Return", isKept, [](Windows&) { pressKey(Qt::Key_Return); }},
        {"Enter", isKept, [](Windows&) { pressKey(Qt::Key_Enter, Qt::KeypadModifier); }},
        {"Tab", isKept, [](Windows&) { pressKey(Qt::Key_Tab); }},
        {"Backtab", isKept, [](Windows&) { pressKey(Qt::Key_Backtab, Qt::ShiftModifier); }},
        {"ClickOnAnotherField", isKept, [](Windows& on) { clickOn(on->field("accountVendorID")); }},
        {"MnemonicOfAnotherField", isKept, [](Windows&) { pressKey(Qt::Key_V, Qt::AltModifier); }},
        {"ClickOnRowAbove", isKept, [](Windows& on) { on->clickRow(0); }},
        {"ClickOnRowBelow", isKept, [](Windows& on) { on->clickRow(2); }},
        {"ClickOnSameRow", isKept, [](Windows& on) { on->clickRow(1); }},
        {"ControlClickOnSameRow", isKept, [](Windows& on) { on->clickRow(1, Qt::ControlModifier); }},
        {"ClickBelowRows", isKept,
         [](Windows& on) { clickAt(*on->table().viewport(), on->table().viewport()->rect().bottomRight()); }},
        {"DragOverRows", isKept,
         [](Windows& on) {
             QListView& table = on->table();
             const auto positionOf = [&](int row) {
                 return table.viewport()->mapTo(table.window(),
                                                table.visualRect(table.model()->index(row, 0)).center());
             };
             QWindow* window = table.window()->windowHandle();
             QTest::mousePress(window, Qt::LeftButton, {}, positionOf(0));
             QTest::mouseMove(window, positionOf(1));
             QTest::mouseMove(window, positionOf(2));
             QTest::mouseRelease(window, Qt::LeftButton, {}, positionOf(2));
         }},
        {"ArrowUp", isKept, [](Windows& on) { goToTableAndPress(Qt::Key_Up, *on); }},
        {"ArrowDown", isKept, [](Windows& on) { goToTableAndPress(Qt::Key_Down, *on); }},
        {"Home", isKept, [](Windows& on) { goToTableAndPress(Qt::Key_Home, *on); }},
        {"End", isKept, [](Windows& on) { goToTableAndPress(Qt::Key_End, *on); }},
        {"PageDown", isKept, [](Windows& on) { goToTableAndPress(Qt::Key_PageDown, *on); }},
        {"SelectionByProgram", isKept,
         [](Windows& on) { on->table().setCurrentIndex(on->table().model()->index(2, 0)); }},
        {"ClickOnGeneralTab", isKept, [](Windows& on) { on->showTab(0); }},
        {"ClickOnOwnTab", isKept, [](Windows& on) { on->showTab(1); }},
        {"ClickOnAdvancedTab", isKept, [](Windows& on) { on->showTab(2); }},
        {"ControlOne", isKept, [](Windows&) { pressKey(Qt::Key_1, Qt::ControlModifier); }},
        {"ControlTwo", isKept, [](Windows&) { pressKey(Qt::Key_2, Qt::ControlModifier); }},
        {"ControlThree", isKept, [](Windows&) { pressKey(Qt::Key_3, Qt::ControlModifier); }},
        {"ThereAndBack", isKept,
         [](Windows&) {
             pressKey(Qt::Key_3, Qt::ControlModifier);
             pressKey(Qt::Key_2, Qt::ControlModifier);
         }},
        {"Close", isKept, [](Windows& on) { on->window().close(); }},
        {"CloseAndReopen", isKept,
         [](Windows& on) {
             on->window().close();
             on->delegate.applicationShouldHandleReopen();
         }},
        {"ReopenWhileOpen", isKept,
         [](Windows& on) {
             on->delegate.applicationShouldHandleReopen();
             pressKey(Qt::Key_Return);
         }},
        {"MenuAndBack", isKept,
         [](Windows& on) {
             pressKey(Qt::Key_F, Qt::AltModifier);
             ASSERT_NE(QApplication::activePopupWidget(), nullptr);
             QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
             clickOn(on->table());
         }},
        {"AlertFromMenu", isKept,
         [](Windows& on) {
             withAlert({key(Qt::Key_Return)}, [&] {
                 pressKey(Qt::Key_H, Qt::AltModifier);
                 ASSERT_NE(QApplication::activePopupWidget(), nullptr);
                 QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_A);
             });
             EXPECT_EQ(on->selectedRow(), 1);
         }},
        {"AlertFromElsewhere", isKept,
         [](Windows& on) {
             withAlert({key(Qt::Key_Escape)}, [&] {
                 on->windowAlerts.runModal(
                     {.messageText = "Alert", .informativeText = {}, .buttons = {}, .accessory = {}});
             });
             EXPECT_EQ(on->selectedRow(), 1);
         }},
        {"ImportRequest", isKept,
         [](Windows& on) {
             on->requestImport();
             on->runToEnd();
             clickOn(on->table());
         }},
        {"AddCancelled", isKept,
         [](Windows&) {
             withAlert({key(Qt::Key_Escape)}, [] {
                 pressKey(Qt::Key_A, Qt::AltModifier);
                 waitUntil([] { return false; }, std::chrono::milliseconds(150));
             });
         }},
        {"AddByClick", isKept,
         [](Windows& on) {
             withAlert({text("8123", Qt::Key_Return)}, [&] { clickOn(on->button("addAccount")); });
             EXPECT_EQ(on->selectedRow(), 3);
             EXPECT_EQ(on->field("accountName").text(), "New Account");
         }},
        {"RemoveCancelled", isKept,
         [](Windows& on) {
             withAlert({key(Qt::Key_Escape)}, [&] { clickOn(on->button("removeAccount")); });
         }},
        {"RemoveConfirmed", mayBeLost,
         [](Windows& on) {
             withAlert({key(Qt::Key_Return)}, [&] { clickOn(on->button("removeAccount")); });
             EXPECT_EQ(on->settings.iTunesAccounts()->size(), 2U);
         }},
        {"RemoveByKey", mayBeLost,
         [](Windows& on) {
             withAlert({key(Qt::Key_Return)}, [&] { goToTableAndPress(Qt::Key_Delete, *on); });
             EXPECT_EQ(on->settings.iTunesAccounts()->size(), 2U);
         }},
        {"RemovedElsewhere", mayBeLost,
         [](Windows& on) {
             auto remaining = *on->settings.iTunesAccounts();
             remaining.erase(remaining.begin() + 1);
             on->settings.setITunesAccounts(remaining);
             on->showTab(1);
         }},
        {"WindowLosesKeyboard", isKept,
         [](Windows&) {
             QWidget other;
             other.show();
             other.activateWindow();
             EXPECT_TRUE(waitUntil([&] { return other.isActiveWindow(); }));
         }},
        {"QuitByKey", mayBeLost,
         [](Windows& on) {
             pressKey(Qt::Key_Q, Qt::ControlModifier);
             EXPECT_EQ(on->application.terminateCount(), 1);
             on.reset();
         }},
        {"EndOfProgram", mayBeLost, [](Windows& on) { on.reset(); }},
    };
    return all;
}

struct DepartureCase {
    const Departure* departure;
    const char* field;
    std::size_t position;  ///< of the field in Fields
};

class AccountsTabDepartureTest : public testing::TestWithParam<DepartureCase> {};

std::vector<DepartureCase> departureCases() {
    std::vector<DepartureCase> cases;
    for (const Departure& departure : departures()) {
        cases.push_back({&departure, "accountName", 0});
        cases.push_back({&departure, "accountEmail", 2});
        cases.push_back({&departure, "accountPassword", 3});
    }
    return cases;
}

TEST_P(AccountsTabDepartureTest, LeavesTheEditWithTheAccountThatItWasTypedFor) {
    const DepartureCase& item = GetParam();
    SourceLanguageStrings strings;
    Windows on = std::make_unique<SettingsWindows>(strings);
    const ITunesAccountList accounts = on->accounts;
    std::vector<Fields> expected = fieldsOf(accounts);
    on->clickRow(1);
    clickOn(on->field(item.field));
    pressKey(Qt::Key_A, Qt::ControlModifier);
    typeText("typed");
    ASSERT_EQ(fieldsOf(accounts), expected) << "nothing is stored in the middle of a word";

    item.departure->leave(on);

    if (item.departure->edit == isKept || accounts[1]->name() == "typed" || accounts[1]->email() == "typed" ||
        accounts[1]->password() == "typed")
        expected[1][item.position] = "typed";
    EXPECT_EQ(fieldsOf(accounts), expected);
    if (on) {
        const SettingsManger afterRestart(on->defaults);
        const auto now = *on->settings.iTunesAccounts();
        EXPECT_EQ(fieldsOf(*afterRestart.iTunesAccounts()), fieldsOf(now)) << "what is stored";
    }
}

INSTANTIATE_TEST_SUITE_P(AllWays, AccountsTabDepartureTest, testing::ValuesIn(departureCases()),
                         [](const testing::TestParamInfo<DepartureCase>& item) {
                             return std::string(item.param.departure->name) + "From" +
                                    std::string(item.param.field).substr(7);
                         });

class AccountsTabTest : public testing::Test {
  protected:
    SettingsWindows& open(int accountCount) {
        on = std::make_unique<SettingsWindows>(strings, accountCount);
        return *on;
    }

    SourceLanguageStrings strings;
    Windows on;
};

// Every account is only ever given its own number, so that a foreign digit anywhere is an edit gone astray.
TEST_F(AccountsTabTest, KeepsEveryEditWithItsAccountOverALongRandomWalk) {
    open(5);
    constexpr unsigned seed = 20150617;
    constexpr int stepCount = 1000;
    std::mt19937 random(seed);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same walk every time
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    const std::array<const char*, 3> fieldNames{"accountName", "accountEmail", "accountPassword"};
    for (const auto& account : on->accounts) {
        account->setName("");
        account->setEmail("");
        account->setPassword("");
    }
    int editCount = 0;
    for (int step = 0; step < stepCount; ++step) {
        switch (below(30)) {
            case 0:
                on->showTab(below(3));
                break;
            case 1:
                on->window().close();
                on->delegate.applicationShouldHandleReopen();
                on->regainKeyboard();
                break;
            case 2:
                pressKey(below(2) == 0 ? Qt::Key_Tab : Qt::Key_Return);
                break;
            case 3:
            case 4:
                if (on->isTabShown(1))
                    goToTableAndPress(std::array{Qt::Key_Up, Qt::Key_Down, Qt::Key_Home, Qt::Key_End}.at(
                                          static_cast<std::size_t>(below(4))),
                                      *on);
                break;
            case 5:
                pressKey(static_cast<Qt::Key>(Qt::Key_1 + below(3)), Qt::ControlModifier);
                break;
            case 6:
            case 7:
            case 8:
            case 9:
            case 10:
            case 11:
            case 12:
                if (!on->isTabShown(1))
                    on->showTab(1);
                on->clickRow(below(5));
                break;
            default:
                if (on->isTabShown(1) && on->selectedRow() >= 0) {
                    clickOn(on->field(fieldNames.at(static_cast<std::size_t>(below(3)))));
                    typeText(toUtf8(on->field("accountVendorID").text()).substr(2));
                    ++editCount;
                }
        }
    }
    on->window().close();
    EXPECT_GT(editCount, 50);
    std::size_t storedCharacters = 0;
    const ITunesAccountList stored = on->settings.iTunesAccounts().value();
    for (const auto& account : stored) {
        const std::string ownDigit = account->vendorID()->substr(2);
        for (const auto& text : {account->name(), account->email(), account->password()}) {
            EXPECT_EQ(text->find_first_not_of(ownDigit), std::string::npos)
                << *account->vendorID() << " holds " << *text;
            storedCharacters += text->size();
        }
    }
    EXPECT_EQ(storedCharacters, static_cast<std::size_t>(editCount)) << "and none is lost";
}

TEST_F(AccountsTabTest, ShowsAHintOnlyWhileThereIsNoAccount) {
    open(0);
    auto& hint = on->find<QLabel>("noAccountsHint");
    EXPECT_TRUE(hint.isVisible());
    EXPECT_FALSE(on->button("removeAccount").isEnabled());
    for (const char* name : {"accountName", "accountEmail", "accountPassword"})
        EXPECT_FALSE(on->field(name).isEnabled()) << name;
    {
        const AlertSteps steps({text("8123", Qt::Key_Return)});
        clickOn(on->button("addAccount"));
        EXPECT_TRUE(steps.wereAllTaken());
    }
    EXPECT_FALSE(hint.isVisible());
    {
        const AlertSteps steps({key(Qt::Key_Return)});
        clickOn(on->button("removeAccount"));
        EXPECT_TRUE(steps.wereAllTaken());
    }
    EXPECT_TRUE(hint.isVisible());
}

TEST_F(AccountsTabTest, AddsFillsAndRemovesAnAccountByKeyboardAlone) {
    open(0);
    pressKey(Qt::Key_1, Qt::ControlModifier);
    pressKey(Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(QApplication::focusWidget(), &on->table());
    pressKey(Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), &on->button("addAccount"));
    std::vector<QString> messages;
    const auto noting = [&](const AlertSteps::Step& step) {
        return [&messages, step](QDialog& alert) {
            messages.push_back(alert.accessibleName());
            step(alert);
        };
    };
    {
        const AlertSteps steps({noting(text("81a3", Qt::Key_Return)), noting(key(Qt::Key_Return)),
                                noting(text("8123", Qt::Key_Return))});
        pressKey(Qt::Key_Return);
        EXPECT_TRUE(steps.wereAllTaken());
    }
    on->regainKeyboard();
    ASSERT_EQ(QApplication::focusWidget(), &on->field("accountName")) << "ready to be named";
    typeText("Shop");
    pressKey(Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), &on->field("accountVendorID"));
    typeText("9");
    EXPECT_EQ(on->field("accountVendorID").text(), "8123");
    pressKey(Qt::Key_Tab);
    typeText("ada@example.com");
    pressKey(Qt::Key_Tab);
    typeText("secret");
    EXPECT_EQ(on->field("accountPassword").displayText(),
              QString(6, on->field("accountPassword").displayText().front()));
    pressKey(Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), &on->find<QCheckBox>("showPassword"));
    pressKey(Qt::Key_Space);
    EXPECT_EQ(on->field("accountPassword").displayText(), "secret");
    EXPECT_EQ(on->title(0), "Shop");
    EXPECT_EQ(on->subtitle(0), "ada@example.com");
    {
        const AlertSteps steps(
            {noting(text("8123", Qt::Key_Return)), noting(key(Qt::Key_Escape)), noting(key(Qt::Key_Escape))});
        pressKey(Qt::Key_Backtab, Qt::ShiftModifier);
        while (QApplication::focusWidget() != &on->button("addAccount"))
            pressKey(Qt::Key_Backtab, Qt::ShiftModifier);
        pressKey(Qt::Key_Space);
        EXPECT_TRUE(steps.wereAllTaken());
    }
    on->regainKeyboard();
    EXPECT_THAT(messages, ElementsAre("Please enter the vendor ID of the new account:",
                                      "The vendor ID must be a numberic string.",
                                      "Please enter the vendor ID of the new account:",
                                      "Please enter the vendor ID of the new account:",
                                      "The vendor ID is already used for another account.",
                                      "Please enter the vendor ID of the new account:"));
    const ITunesAccountList stored = *SettingsManger(on->defaults).iTunesAccounts();
    ASSERT_EQ(stored.size(), 1U);
    EXPECT_EQ(fieldsOf(*stored[0]), (Fields{"Shop", "8123", "ada@example.com", "secret"}));

    pressKey(Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), &on->button("removeAccount"));
    {
        const AlertSteps steps({key(Qt::Key_Return)});
        pressKey(Qt::Key_Return);
        EXPECT_TRUE(steps.wereAllTaken());
    }
    on->regainKeyboard();
    EXPECT_TRUE(on->settings.iTunesAccounts()->empty());
    EXPECT_EQ(QApplication::focusWidget(), &on->table()) << "not lost on a button that is disabled";
}

TEST_F(AccountsTabTest, ResetsTheCachesAndWatchesAnImportByKeyboardAlone) {
    open(1);
    on->fillCache([](const std::string&) { return false; });
    on->settings.setReportsDownloadedLiteCache(ReportKeys{"20150601_D"});
    pressKey(Qt::Key_3, Qt::ControlModifier);
    ASSERT_EQ(QApplication::focusWidget(), &on->button("resetCache"));
    {
        const AlertSteps steps({key(Qt::Key_Return), key(Qt::Key_Escape)});
        pressKey(Qt::Key_Return);
        EXPECT_TRUE(on->settings.reportsDownloadedCache().has_value()) << "the default is Cancel";
        on->regainKeyboard();
        pressKey(Qt::Key_Space);
        EXPECT_TRUE(on->settings.reportsDownloadedCache().has_value());
        EXPECT_TRUE(steps.wereAllTaken());
    }
    on->regainKeyboard();
    {
        const AlertSteps steps({[](QDialog&) {
            pressKey(Qt::Key_Tab);
            pressKey(Qt::Key_Space);
        }});
        pressKey(Qt::Key_Return);
        EXPECT_TRUE(steps.wereAllTaken());
    }
    on->regainKeyboard();
    EXPECT_FALSE(on->settings.reportsDownloadedCache().has_value());
    EXPECT_FALSE(on->settings.reportsDownloadedLiteCache().has_value());

    on->requestImport();
    const auto sheet = [] {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == "importSheet" && widget->isVisible())
                return widget;
        }
        return static_cast<QWidget*>(nullptr);
    };
    ASSERT_NE(sheet(), nullptr);
    ASSERT_TRUE(waitUntil([&] { return sheet()->isActiveWindow(); }));
    EXPECT_EQ(sheet()->findChild<QLabel*>("importDescription")->text(), "Preparing Import...");
    for (const Qt::Key ignored : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Space})
        pressKey(ignored);
    ASSERT_NE(sheet(), nullptr) << "an import is not dismissed";
    on->runToEnd();
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_TRUE(on->settings.reportsDownloadedCache().has_value());
}

TEST_F(AccountsTabTest, IsWalkedThroughByTheTabKeyInReadingOrder) {
    open(2);
    on->clickRow(0);
    std::vector<std::string> names;
    QWidget* const start = QApplication::focusWidget();
    do {
        names.push_back(toUtf8(QApplication::focusWidget()->objectName()));
        pressKey(Qt::Key_Tab);
    } while (QApplication::focusWidget() != start && names.size() < 20);
    const std::vector<std::string> order{"accounts",
                                         "addAccount",
                                         "removeAccount",
                                         "accountName",
                                         "accountVendorID",
                                         "accountEmail",
                                         "accountPassword",
                                         "showPassword",
                                         "settingsGeneralIdentifier",
                                         "settingsAccountsIdentifier",
                                         "settingsAdvancedIdentifier"};
    EXPECT_EQ(names, order);
    std::vector<std::string> backwards;
    do {
        pressKey(Qt::Key_Backtab, Qt::ShiftModifier);
        backwards.push_back(toUtf8(QApplication::focusWidget()->objectName()));
    } while (QApplication::focusWidget() != start && backwards.size() < 20);
    EXPECT_EQ(backwards, std::vector<std::string>(order.rbegin(), order.rend()));

    on->showTab(2);
    on->showTab(1);
    EXPECT_EQ(QApplication::focusWidget(), &on->table()) << "after a change of tabs";
    pressKey(Qt::Key_Down);
    pressKey(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &on->button("addAccount")) << "the same after a change of tabs";
}

TEST_F(AccountsTabTest, StaysInTheToolbarWhenATabIsChosenThere) {
    open(1);
    auto& toolbar = on->find<QToolBar>("tabs");
    while (QApplication::focusWidget() != toolbar.widgetForAction(toolbar.actions().at(2)))
        pressKey(Qt::Key_Tab);
    pressKey(Qt::Key_Space);
    EXPECT_TRUE(on->isTabShown(2));
    EXPECT_EQ(QApplication::focusWidget(), toolbar.widgetForAction(toolbar.actions().at(2)));
}

TEST_F(AccountsTabTest, AnswersAssistiveTechnologyThatTogglesATab) {
    open(1);
    auto& toolbar = on->find<QToolBar>("tabs");
    QAccessibleInterface* button =
        QAccessible::queryAccessibleInterface(toolbar.widgetForAction(toolbar.actions().at(2)));
    ASSERT_NE(button, nullptr);
    ASSERT_NE(button->actionInterface(), nullptr);
    button->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(waitUntil([this] { return on->button("resetCache").isVisible(); }));
    EXPECT_TRUE(on->isTabShown(2));
    on->showTab(1);
    QApplication::processEvents();
    EXPECT_TRUE(on->table().isVisible());
}

TEST_F(AccountsTabTest, ReachesFieldsByTheirMnemonics) {
    open(1);
    on->clickRow(0);
    const std::vector<std::pair<Qt::Key, const char*>> mnemonics{{Qt::Key_N, "accountName"},
                                                                 {Qt::Key_V, "accountVendorID"},
                                                                 {Qt::Key_E, "accountEmail"},
                                                                 {Qt::Key_P, "accountPassword"}};
    for (const auto& [mnemonic, name] : mnemonics) {
        pressKey(mnemonic, Qt::AltModifier);
        EXPECT_EQ(QApplication::focusWidget(), &on->field(name));
    }
    pressKey(Qt::Key_S, Qt::AltModifier);
    EXPECT_TRUE(waitUntil([this] { return on->find<QCheckBox>("showPassword").isChecked(); }));
}

TEST_F(AccountsTabTest, LetsTheVendorIDBeSelectedButNotChanged) {
    open(1);
    on->clickRow(0);
    clickOn(on->field("accountVendorID"));
    pressKey(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(on->field("accountVendorID").selectedText(), "100");
    pressKey(Qt::Key_Delete);
    EXPECT_EQ(on->field("accountVendorID").text(), "100");
}

TEST_F(AccountsTabTest, HidesAShownPasswordBeforeAnotherAccountIsShown) {
    open(2);
    on->clickRow(0);
    clickAt(on->find<QCheckBox>("showPassword"), {8, on->find<QCheckBox>("showPassword").height() / 2});
    EXPECT_EQ(on->field("accountPassword").displayText(), "secret100");
    on->clickRow(1);
    EXPECT_NE(on->field("accountPassword").displayText(), "secret101");
    EXPECT_FALSE(on->find<QCheckBox>("showPassword").isChecked());
}

TEST_F(AccountsTabTest, WritesTheStoreOnceForACommitAndReloadsOneRow) {
    open(300);
    on->clickRow(150);
    const QSignalSpy resets(on->table().model(), &QAbstractItemModel::modelReset);
    const QSignalSpy changes(on->table().model(), &QAbstractItemModel::dataChanged);
    const int before = on->defaults.synchronizeCount();
    clickOn(on->field("accountName"));
    typeText("x");
    EXPECT_EQ(on->defaults.synchronizeCount(), before) << "typing writes nothing";
    pressKey(Qt::Key_Return);
    EXPECT_EQ(on->defaults.synchronizeCount(), before + 1);
    pressKey(Qt::Key_Tab);
    pressKey(Qt::Key_Tab);
    EXPECT_EQ(on->defaults.synchronizeCount(), before + 1) << "leaving fields that were not changed";
    on->clickRow(10);
    EXPECT_EQ(on->defaults.synchronizeCount(), before + 1) << "a selection";
    EXPECT_EQ(resets.count(), 0);
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes.first().at(0).toModelIndex().row(), 150);
    EXPECT_EQ(changes.first().at(1).toModelIndex().row(), 150);
}

TEST_F(AccountsTabTest, ShowsANewAccountAtTheEndOfALongList) {
    open(300);
    const AlertSteps steps({text("8123", Qt::Key_Return)});
    clickOn(on->button("addAccount"));
    EXPECT_TRUE(steps.wereAllTaken());
    EXPECT_EQ(on->selectedRow(), 300);
    const QRect row = on->table().visualRect(on->table().model()->index(300, 0));
    EXPECT_TRUE(on->table().viewport()->rect().contains(row));
}

// A field that changed such a text by showing it would destroy it with the next commit of another field.
TEST_F(AccountsTabTest, LeavesUnusualTextsAloneWhenAnotherFieldIsCommitted) {
    open(1);
    const std::vector<std::string> unusual{"two\nlines",
                                           "tab\tand\rreturn",
                                           std::string("nul\0inside", 10),
                                           "  blanks  ",
                                           "e\xCC\x81 \xF0\x9F\x98\x80 \xE2\x80\xA8",
                                           "<b>bold</b> & %@",
                                           std::string(40000, 'x')};
    for (const std::string& text : unusual) {
        on->showTab(0);
        on->accounts[0]->setName(text);
        on->accounts[0]->setPassword(text);
        on->showTab(1);
        on->clickRow(0);
        clickOn(on->field("accountEmail"));
        typeText("y");
        pressKey(Qt::Key_Return);
        EXPECT_EQ(on->accounts[0]->name(), text);
        EXPECT_EQ(on->accounts[0]->password(), text);
    }
}

TEST_F(AccountsTabTest, NamesARowWithoutATextForAssistiveTechnology) {
    open(1);
    const auto accessibleText = [this] {
        return toUtf8(on->table().model()->index(0, 0).data(Qt::AccessibleTextRole).toString());
    };
    EXPECT_EQ(accessibleText(), "Account 100, user100@example.com");
    on->accounts[0]->setName(std::nullopt);
    EXPECT_EQ(accessibleText(), "user100@example.com");
    on->accounts[0]->setName("");
    on->accounts[0]->setEmail("");
    EXPECT_EQ(accessibleText(), "Account without a name");
}

}  // namespace
}  // namespace corvane
