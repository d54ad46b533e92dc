#pragma once

namespace corvane::test {

/// As long as one lives, the file system is one that cannot rename "unless the name is taken", as some on the
/// network cannot. The test program is linked so that the product's calls come through here
/// (--wrap=renameat2). On one thread.
class SimpleFileSystem {
  public:
    SimpleFileSystem();
    ~SimpleFileSystem();

    SimpleFileSystem(const SimpleFileSystem&) = delete;
    SimpleFileSystem& operator=(const SimpleFileSystem&) = delete;
};

}  // namespace corvane::test
