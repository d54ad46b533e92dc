#include "support/temporary_folder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "platform/fatal_error.h"

namespace corvane::test {

TemporaryFolder::TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "corvane-XXXXXX").native();
    if (mkdtemp(name.data()) == nullptr)
        fatalError("cannot make a temporary folder");
    path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;  // a left-over folder harms nobody
    std::filesystem::remove_all(path_, ignored);
}

void writeFile(const std::filesystem::path& path, std::string_view content) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    if (!file.flush())
        fatalError("cannot write " + path.native());
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace corvane::test
