#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>

#include "import_command/import_command.h"
#include "import_command/interruption.h"
#include "import_command/messages.h"

namespace {

using namespace corvane::import_command;

ExitStatus run(const Arguments& arguments, Output& output) {
    switch (arguments.action) {
        case Arguments::Action::ShowHelp:
            output.write(helpText());
            return Done;
        case Arguments::Action::ShowVersion:
            output.write(versionText());
            return Done;
        case Arguments::Action::Refuse:
            std::fputs(usageProblem(arguments.problem).c_str(), stderr);
            return WrongUsage;
        case Arguments::Action::Import:
            break;
    }
    return runImport(arguments, output);
}

}  // namespace

int main(int argc, char** argv) {
    endAtInterruption();
    const Arguments arguments = parseArguments({argv + (argc > 0 ? 1 : 0), argv + argc});

    // A timer's process has no locale, about which Qt would complain; the texts are English anyway.
    setenv("LC_ALL", "C.UTF-8", 1);
    const QCoreApplication application(argc, argv);
    Output output;
    const ExitStatus status = run(arguments, output);
    if (!output.flush()) {
        std::fputs(problemLine("cannot write the output").c_str(), stderr);
        return status == Done ? CouldNotAsk : status;
    }
    return status;
}
