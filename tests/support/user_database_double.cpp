#include "support/user_database_double.h"

#include <pwd.h>

#include <cerrno>
#include <utility>

namespace corvane::test {

namespace {

UserDatabaseDouble* current = nullptr;

}  // namespace

UserDatabaseDouble::UserDatabaseDouble(std::optional<std::string> homeOfUser, std::size_t sizeOfEntry)
    : home(std::move(homeOfUser)), entrySize(sizeOfEntry) {
    current = this;
}

UserDatabaseDouble::~UserDatabaseDouble() {
    current = nullptr;
}

}  // namespace corvane::test

// The linker turns the product's calls into calls of __wrap_getpwuid_r; the names are its own.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" {

int __real_getpwuid_r(uid_t user, passwd* entry, char* texts, size_t size, passwd** found);
int __wrap_getpwuid_r(uid_t user, passwd* entry, char* texts, size_t size, passwd** found);

int __wrap_getpwuid_r(uid_t user, passwd* entry, char* texts, size_t size, passwd** found) {
    using corvane::test::current;
    if (current == nullptr)
        return __real_getpwuid_r(user, entry, texts, size, found);
    *found = nullptr;
    if (size < current->entrySize)
        return ERANGE;
    if (!current->home)
        return 0;
    *entry = {};
    entry->pw_dir = current->home->data();
    *found = entry;
    return 0;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
