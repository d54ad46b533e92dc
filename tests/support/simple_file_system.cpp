#include "support/simple_file_system.h"

#include <cerrno>
#include <cstdio>

namespace corvane::test {

namespace {

bool isSimple = false;

}  // namespace

SimpleFileSystem::SimpleFileSystem() {
    isSimple = true;
}

SimpleFileSystem::~SimpleFileSystem() {
    isSimple = false;
}

}  // namespace corvane::test

// The linker turns the product's calls into calls of __wrap_renameat2; the names are its own.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" {

int __real_renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags);
int __wrap_renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags);

int __wrap_renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
    if (!corvane::test::isSimple)
        return __real_renameat2(fromFolder, from, toFolder, to, flags);
    errno = EINVAL;
    return -1;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
