#pragma once

#include <QDBusMessage>
#include <QObject>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "desktop/session_bus.h"
#include "platform/distributed_notification_center.h"
#include "platform/log.h"
#include "platform/notification_observers.h"

namespace corvane {

/// The distributed notification centre as signals on the session bus: path
/// /com/quessartolvinger/DistributedNotificationCenter, interface
/// com.quessartolvinger.DistributedNotificationCenter, member = the notification's name, and no argument or
/// one: the notification's object. Notifications of others are listened for from the moment that the bus is
/// joined. An own one counts as sent when the bus has taken it; until then it is sent again on each joining.
class DbusNotificationCenter final : public QObject, public DistributedNotificationCenter {
    Q_OBJECT

  public:
    /// Both must outlive the centre.
    DbusNotificationCenter(SessionBus& bus, Log& log);
    /// What could not be sent is logged.
    ~DbusNotificationCenter() override;

    void addObserver(std::string_view name, Handler handler) override;
    void post(std::string_view name) override;

    /// Blocks until the bus has taken everything that was posted, at most that long. False when it has not.
    bool flush(std::chrono::milliseconds limit);

  private:
    Q_SLOT void receive(const QDBusMessage& message);

    struct Unsent {
        std::uint64_t number;
        std::string name;
    };

    void listenAndSend();
    void send(const Unsent& notification);
    void confirmUpTo(std::uint64_t number);

    SessionBus& bus_;
    Log& log_;
    NotificationObservers<DistributedNotification> observers_;
    std::vector<Unsent> unsent_;  ///< posted, and not known to have reached the bus
    std::uint64_t postCount_ = 0;
};

}  // namespace corvane
