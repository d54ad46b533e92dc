#include "desktop/start_by_bus.h"

#include <unistd.h>

#include <QtGlobal>

namespace corvane {

bool isStartedByBus() {
    // A terminal that the bus has started hands the variable on to all that is typed there.
    return qEnvironmentVariableIsSet("DBUS_STARTER_ADDRESS") && isatty(STDIN_FILENO) == 0;
}

}  // namespace corvane
