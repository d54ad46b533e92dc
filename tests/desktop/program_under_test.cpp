#include "desktop/program.h"

// The program with the report service that the test names: program_under_test HOST CA_FILE
int main(int argc, char** argv) {
    if (argc < 3)
        return 2;
    int programArguments = 1;
    return corvane::runProgram(programArguments, argv,
                               {.reportServiceHost = argv[1],
                                .updateHost = "localhost:1",
                                .caFile = argv[2],
                                .version = "1.2.3",
                                .localeDirectory = "/nonexistent"});
}
