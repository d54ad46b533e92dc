#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace corvane::test {

/// What the system's user database says of this process's user, as long as this lives. The test program is
/// linked so that the product's look-ups come through here (--wrap=getpwuid_r). One at a time, on one thread.
class UserDatabaseDouble {
  public:
    /// An entry with that home folder; absent: the database does not know the user. An entry that needs more
    /// room than `entrySize` is asked for again with more.
    explicit UserDatabaseDouble(std::optional<std::string> home, std::size_t entrySize = 0);
    ~UserDatabaseDouble();

    UserDatabaseDouble(const UserDatabaseDouble&) = delete;
    UserDatabaseDouble& operator=(const UserDatabaseDouble&) = delete;

    std::optional<std::string> home;
    std::size_t entrySize;
};

}  // namespace corvane::test
