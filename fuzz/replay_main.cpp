// Stands in for libFuzzer in ordinary builds: gives the target each file of the folders named on the command
// line, and each of its beginnings, which are cheap mutants.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

#include "fuzz_input.h"

namespace {

constexpr std::size_t beginningsPerFile = 64;

std::vector<std::uint8_t> readWhole(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void replay(const std::vector<std::uint8_t>& input) {
    const std::size_t step = std::max<std::size_t>(1, input.size() / beginningsPerFile);
    for (std::size_t size = 0; size < input.size(); size += step)
        LLVMFuzzerTestOneInput(input.data(), size);
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int main(int argc, char** argv) {
    std::size_t files = 0;
    for (int index = 1; index < argc; ++index) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[index])) {
            replay(readWhole(entry.path()));
            ++files;
        }
    }
    std::cout << files << " files\n";
    return files == 0 ? EXIT_FAILURE : EXIT_SUCCESS;
}
