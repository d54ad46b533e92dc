// Linked with --wrap=fsync,--wrap=syncfs: what these tests write need not survive a power cut, and flushing
// it to a busy disk would take most of their time.

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,readability-identifier-naming)
extern "C" {

int __wrap_fsync(int file);
int __wrap_syncfs(int file);

int __wrap_fsync(int /*file*/) {
    return 0;
}

int __wrap_syncfs(int /*file*/) {
    return 0;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,readability-identifier-naming)
