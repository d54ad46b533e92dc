#include "platform/system/user_directories.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <string>

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

}  // namespace
}  // namespace corvane
