#include "reliability/system_call_faults.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>

namespace corvane::test {

namespace {

SystemCallFaults* current = nullptr;

}  // namespace

SystemCallFaults::SystemCallFaults(int failingCall, int error, Extent extent)
    : failingCall_(failingCall), error_(error), extent_(extent) {
    current = this;
}

SystemCallFaults::~SystemCallFaults() {
    current = nullptr;
}

bool SystemCallFaults::hasFailed() const {
    return static_cast<int>(calls_.size()) > failingCall_;
}

const std::vector<std::string>& SystemCallFaults::calls() const {
    return calls_;
}

bool SystemCallFaults::failsNow(const char* name) {
    if (current == nullptr)
        return false;
    const int number = static_cast<int>(current->calls_.size());
    current->calls_.emplace_back(name);
    const bool fails = number == current->failingCall_ ||
                       (current->extent_ == Extent::AllFrom && number > current->failingCall_);
    if (fails)
        errno = current->error_;
    return fails;
}

}  // namespace corvane::test

// The linker turns the product's calls of f into calls of __wrap_f, and __real_f into the system's f; the
// names are its own. Those that only tell what is there are left alone: their failures mean something else.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,readability-identifier-naming)
extern "C" {

using corvane::test::SystemCallFaults;

int __real_open(const char* path, int flags, ...);
int __real_openat(int folder, const char* path, int flags, ...);
ssize_t __real_read(int file, void* bytes, size_t count);
ssize_t __real_write(int file, const void* bytes, size_t count);
int __real_chmod(const char* path, mode_t mode);
int __real_fchmod(int file, mode_t mode);
int __real_renameat(int fromFolder, const char* from, int toFolder, const char* to);
int __real_unlinkat(int folder, const char* path, int flags);
int __real_mkdir(const char* path, mode_t mode);
int __real_fstat(int file, struct stat* status);
int __real_fstatat(int folder, const char* path, struct stat* status, int flags);
ssize_t __real_getrandom(void* bytes, size_t count, unsigned flags);

int __wrap_open(const char* path, int flags, ...);
int __wrap_openat(int folder, const char* path, int flags, ...);
ssize_t __wrap_read(int file, void* bytes, size_t count);
ssize_t __wrap_write(int file, const void* bytes, size_t count);
int __wrap_fsync(int file);
int __wrap_syncfs(int file);
int __wrap_chmod(const char* path, mode_t mode);
int __wrap_fchmod(int file, mode_t mode);
int __wrap_renameat(int fromFolder, const char* from, int toFolder, const char* to);
int __wrap_unlinkat(int folder, const char* path, int flags);
int __wrap_mkdir(const char* path, mode_t mode);
int __wrap_fstat(int file, struct stat* status);
int __wrap_fstatat(int folder, const char* path, struct stat* status, int flags);
ssize_t __wrap_getrandom(void* bytes, size_t count, unsigned flags);

int __wrap_open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return SystemCallFaults::failsNow("open") ? -1 : __real_open(path, flags, mode);
}

int __wrap_openat(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return SystemCallFaults::failsNow("openat") ? -1 : __real_openat(folder, path, flags, mode);
}

ssize_t __wrap_read(int file, void* bytes, size_t count) {
    return SystemCallFaults::failsNow("read") ? -1 : __real_read(file, bytes, count);
}

ssize_t __wrap_write(int file, const void* bytes, size_t count) {
    return SystemCallFaults::failsNow("write") ? -1 : __real_write(file, bytes, count);
}

// What these tests write need not survive a power cut, and flushing it to a busy disk takes most of their
// time.
int __wrap_syncfs(int /*file*/) {
    return SystemCallFaults::failsNow("syncfs") ? -1 : 0;
}

int __wrap_fsync(int /*file*/) {
    return SystemCallFaults::failsNow("fsync") ? -1 : 0;
}

int __wrap_chmod(const char* path, mode_t mode) {
    return SystemCallFaults::failsNow("chmod") ? -1 : __real_chmod(path, mode);
}

int __wrap_fchmod(int file, mode_t mode) {
    return SystemCallFaults::failsNow("fchmod") ? -1 : __real_fchmod(file, mode);
}

int __wrap_renameat(int fromFolder, const char* from, int toFolder, const char* to) {
    return SystemCallFaults::failsNow("renameat") ? -1 : __real_renameat(fromFolder, from, toFolder, to);
}

int __wrap_unlinkat(int folder, const char* path, int flags) {
    return SystemCallFaults::failsNow("unlinkat") ? -1 : __real_unlinkat(folder, path, flags);
}

int __wrap_mkdir(const char* path, mode_t mode) {
    return SystemCallFaults::failsNow("mkdir") ? -1 : __real_mkdir(path, mode);
}

int __wrap_fstat(int file, struct stat* status) {
    return SystemCallFaults::failsNow("fstat") ? -1 : __real_fstat(file, status);
}

int __wrap_fstatat(int folder, const char* path, struct stat* status, int flags) {
    return SystemCallFaults::failsNow("fstatat") ? -1 : __real_fstatat(folder, path, status, flags);
}

ssize_t __wrap_getrandom(void* bytes, size_t count, unsigned flags) {
    return SystemCallFaults::failsNow("getrandom") ? -1 : __real_getrandom(bytes, count, flags);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,readability-identifier-naming)
