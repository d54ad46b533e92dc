#pragma once

#include <QDBusContext>
#include <QObject>

#include "desktop/application_commands.h"
#include "desktop/session_bus.h"
#include "platform/log.h"

namespace corvane {

/// The program on the session bus: owns the name com.quessartolvinger.Corvane, at most one process of a
/// session does, and answers org.freedesktop.Application at /com/quessartolvinger/Corvane. Whatever listens
/// on the bus must do so before `start`: whoever sees the name may ask at once. Main thread only.
class ApplicationService final : public QObject, public QDBusContext {
    Q_OBJECT

  public:
    enum class Start {
        OwnsName,
        WithoutBus,      ///< there is none; the name is taken once it is there
        ActivatedOther,  ///< another process owns the name, and was brought to the front
    };

    /// Bus and log must outlive the service; the commands are what others on the bus may tell the program.
    ApplicationService(SessionBus& bus, Log& log, ApplicationCommands commands);

    /// Once. Blocks until the bus has answered.
    Start start();

    /// Gives the name back, so that the next start is not sent to a program that is about to end.
    void stop();

  private:
    enum class Claim { Owned, Taken, Failed };

    void exportObject();
    Claim claimName();
    bool activateOwner();
    void claimNameAgain();

    SessionBus& bus_;
    Log& log_;
};

}  // namespace corvane
