#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QLineEdit>
#include <QListView>
#include <csignal>
#include <filesystem>
#include <functional>
#include <memory>

#include "desktop/accounts_tab.h"
#include "desktop/user_input.h"
#include "platform/memory/in_memory_log.h"
#include "platform/memory/manual_clock.h"
#include "platform/memory/scripted_alerts.h"
#include "platform/memory/source_language_strings.h"
#include "platform/system/property_list_file_store.h"
#include "settings_window/settings_accounts_view_controller.h"
#include "support/temporary_folder.h"

namespace corvane {
namespace {

using test::clickOn;
using test::pressKey;
using test::typeText;
using testing::ElementsAre;
namespace fs = std::filesystem;

/// No file can grow beyond that size as long as the object lives, as on a full disk.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t size) : formerHandler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &former_);
        const rlimit limit{size, former_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &former_);
        std::signal(SIGXFSZ, formerHandler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit former_{};
    void (*formerHandler_)(int);
};

/// Nobody may write into the folder as long as the object lives, and it belongs to somebody else where the
/// tests run as root.
class ReadOnlyFolder {
  public:
    explicit ReadOnlyFolder(fs::path folder) : folder_(std::move(folder)) {
        fs::permissions(folder_, fs::perms{0555});
        if (wasRoot_ && seteuid(ordinaryUser) != 0)
            qFatal("cannot become an ordinary user");
    }
    ~ReadOnlyFolder() {
        if (wasRoot_ && seteuid(0) != 0)
            qFatal("cannot become root again");
        fs::permissions(folder_, fs::perms{0755});
    }
    ReadOnlyFolder(const ReadOnlyFolder&) = delete;
    ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;

  private:
    static constexpr uid_t ordinaryUser = 65534;

    const bool wasRoot_ = geteuid() == 0;
    const fs::path folder_;
};

/// The Accounts tab on a real settings file, with one account.
class SettingsFaultTest : public testing::Test {
  protected:
    SettingsFaultTest() {
        fs::permissions(folder_.path(), fs::perms{0755});
        auto account = std::make_shared<ITunesAccount>("100", "Stored");
        account->setEmail("stored@example.com");
        account->setPassword("stored");
        settings_.setITunesAccounts(ITunesAccountList{account});
        fs::permissions(file_, fs::perms{0644});

        controller_.viewDidLoad();
        controller_.viewWillAppear();
        widget().show();
        widget().activateWindow();
        EXPECT_TRUE(waitUntil([this] { return widget().isActiveWindow(); }));
        view_.selectRow(0);
    }

    QWidget& widget() { return *view_.widget(); }

    void typeName(const std::string& text) {
        clickOn(*widget().findChild<QLineEdit*>("accountName"));
        pressKey(Qt::Key_A, Qt::ControlModifier);
        typeText(text);
        pressKey(Qt::Key_Return);
    }

    /// As a new start would find it.
    std::vector<std::string> storedTexts() {
        PropertyListFileStore store(file_, log_, clock_);
        const auto accounts = SettingsManger(store).iTunesAccounts();
        std::vector<std::string> texts;
        for (const auto& account : accounts.value_or(ITunesAccountList{})) {
            for (const auto& text : {account->name(), account->email(), account->password()})
                texts.push_back(text.value_or("absent"));
        }
        return texts;
    }
    std::vector<std::string> filesInFolder() {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(file_.parent_path()))
            names.push_back(entry.path().filename());
        return names;
    }

    test::TemporaryFolder folder_;
    const fs::path file_ = folder_.path() / "corvane" / "settings.plist";
    InMemoryLog log_;
    ManualClock clock_{Date{}};
    PropertyListFileStore store_{file_, log_, clock_};
    SettingsManger settings_{store_};
    ScriptedAlerts alerts_;
    NotificationCenter notificationCenter_;
    SourceLanguageStrings strings_;
    std::unique_ptr<AccountsTab> ownedView_ = std::make_unique<AccountsTab>(strings_);
    AccountsTab& view_ = *ownedView_;
    SettingsAccountsViewController controller_{std::move(ownedView_),
                                               {settings_, alerts_, notificationCenter_, strings_}};
};

TEST_F(SettingsFaultTest, GoesOnAndKeepsWhatWasStoredWhileTheDiskIsFull) {
    {
        const FileSizeLimit limit(100);
        typeName("first");
        typeName("second");
    }
    EXPECT_THAT(storedTexts(), ElementsAre("Stored", "stored@example.com", "stored"));
    EXPECT_THAT(filesInFolder(), ElementsAre("settings.plist"));
    EXPECT_EQ(view_.text(AccountField::Name), "second");
    pressKey(Qt::Key_Return);
    EXPECT_THAT(storedTexts(), ElementsAre("second", "stored@example.com", "stored"))
        << "with room again, what was typed meanwhile is stored";
}

TEST_F(SettingsFaultTest, GoesOnAndKeepsWhatWasStoredWhileTheFolderIsReadOnly) {
    const bool isRoot = geteuid() == 0;
    fs::permissions(file_.parent_path(), fs::perms{0755});
    {
        const ReadOnlyFolder readOnly(file_.parent_path());
        typeName("typed");
        EXPECT_EQ(view_.text(AccountField::Name), "typed");
    }
    // The owner's folder is given back the access that it ought to have.
    EXPECT_THAT(storedTexts(), ElementsAre(isRoot ? "Stored" : "typed", "stored@example.com", "stored"));
    EXPECT_THAT(filesInFolder(), ElementsAre("settings.plist"));
    pressKey(Qt::Key_Return);
    EXPECT_THAT(storedTexts(), ElementsAre("typed", "stored@example.com", "stored"));
}

TEST_F(SettingsFaultTest, GoesOnWhenTheFolderGoesAway) {
    fs::remove_all(file_.parent_path());
    typeName("typed");
    EXPECT_THAT(storedTexts(), ElementsAre("typed", "stored@example.com", "stored"));
}

}  // namespace
}  // namespace corvane
