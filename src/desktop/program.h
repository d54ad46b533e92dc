#pragma once

#include "desktop/build_settings.h"

namespace corvane {

/// The whole program, from its start to its end; to be called once, from main(). Where the program runs
/// already in this session, brings that one to the front and returns. Returns the exit status; ends the
/// process itself when something does not come to its end in time.
int runProgram(int argc, char** argv, const BuildSettings& buildSettings);

}  // namespace corvane
