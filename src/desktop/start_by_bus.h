#pragma once

namespace corvane {

/// Whether the session bus has started this process, for somebody who asked for its name. Told by the
/// variable DBUS_STARTER_ADDRESS that bus daemons set; false where a bus starts programs without it.
bool isStartedByBus();

}  // namespace corvane
