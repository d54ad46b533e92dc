#include "platform/system/user_directories.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "support/user_database_double.h"

namespace corvane {
namespace {

/// Sets or clears a variable for the length of a test.
class Variable {
  public:
    explicit Variable(const char* name) : name_(name) {
        if (const char* value = std::getenv(name))
            previous_ = value;
        clear();
    }
    ~Variable() { previous_ ? set(*previous_) : clear(); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

    void set(const std::string& value) const { setenv(name_, value.c_str(), 1); }
    void clear() const { unsetenv(name_); }

  private:
    const char* name_;
    std::optional<std::string> previous_;
};

class UserDirectoriesTest : public ::testing::Test {
  protected:
    const Variable home_{"HOME"};
    const Variable configuration_{"XDG_CONFIG_HOME"};
    const Variable data_{"XDG_DATA_HOME"};
};

TEST_F(UserDirectoriesTest, AreWhatTheEnvironmentSays) {
    configuration_.set("/c");
    data_.set("/d");
    EXPECT_EQ(userConfigurationDirectory(), "/c");
    EXPECT_EQ(userDataDirectory(), "/d");
    EXPECT_EQ(settingsFilePath(), "/c/corvane/settings.plist");
}

TEST_F(UserDirectoriesTest, LieInTheHomeDirectoryWhereTheVariablesSayNothingUsable) {
    home_.set("/home/user");
    for (const char* value : {"", "relative", "./relative"}) {
        configuration_.set(value);
        data_.set(value);
        EXPECT_EQ(userConfigurationDirectory(), "/home/user/.config") << value;
        EXPECT_EQ(userDataDirectory(), "/home/user/.local/share") << value;
    }
    configuration_.clear();
    EXPECT_EQ(settingsFilePath(), "/home/user/.config/corvane/settings.plist");
}

TEST_F(UserDirectoriesTest, TakeTheHomeDirectoryFromTheUserDatabaseWithoutTheVariable) {
    const passwd* const entry = getpwuid(geteuid());
    ASSERT_NE(entry, nullptr);
    const std::filesystem::path expected = entry->pw_dir;
    EXPECT_EQ(homeDirectory(), expected);
    home_.set("");
    EXPECT_EQ(homeDirectory(), expected);
    home_.set("relative");
    EXPECT_EQ(homeDirectory(), expected);
    EXPECT_EQ(userDataDirectory(), expected / ".local/share");
}

TEST_F(UserDirectoriesTest, AreNoneForAUserWithoutAUsableHomeDirectory) {
    const std::vector<std::optional<std::string>> homes{std::nullopt, "", "relative"};
    for (const std::optional<std::string>& home : homes) {
        SCOPED_TRACE(home.value_or("(not in the user database)"));
        const test::UserDatabaseDouble database(home);
        EXPECT_EQ(homeDirectory(), std::nullopt);
        EXPECT_EQ(userConfigurationDirectory(), std::nullopt);
        EXPECT_EQ(userDataDirectory(), std::nullopt);
        EXPECT_EQ(settingsFilePath(), std::nullopt);
        data_.set("/d");
        EXPECT_EQ(userDataDirectory(), "/d");
        data_.clear();
    }
}

TEST_F(UserDirectoriesTest, ComeFromEntriesOfTheUserDatabaseUpToOneMebibyte) {
    const test::UserDatabaseDouble longEntry("/home/user", std::size_t{1} << 20);
    EXPECT_EQ(homeDirectory(), "/home/user");
    const test::UserDatabaseDouble endlessEntry("/home/user", std::size_t{1} << 30);
    EXPECT_EQ(homeDirectory(), std::nullopt);
}

}  // namespace
}  // namespace corvane
