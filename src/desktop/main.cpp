#include "desktop/build_settings.h"
#include "desktop/command_line.h"
#include "desktop/program.h"

int main(int argc, char** argv) {
    const corvane::BuildSettings settings = corvane::buildSettings();
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    if (const auto answer = corvane::answerTo(arguments, settings.version))
        return corvane::giveAnswer(*answer);
    return corvane::runProgram(argc, argv, settings);
}
