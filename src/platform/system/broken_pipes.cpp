#include "platform/system/broken_pipes.h"

#include <csignal>

namespace corvane {

void ignoreBrokenPipes() {
    std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace corvane
