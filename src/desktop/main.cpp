#include "desktop/build_settings.h"
#include "desktop/program.h"

int main(int argc, char** argv) {
    return corvane::runProgram(argc, argv, corvane::buildSettings());
}
