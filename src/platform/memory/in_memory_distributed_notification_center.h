#pragma once

#include <string>
#include <vector>

#include "platform/distributed_notification_center.h"
#include "platform/notification_observers.h"

namespace corvane {

/// A notification centre with this process as its only member: what others send comes through `deliver`.
class InMemoryDistributedNotificationCenter final : public DistributedNotificationCenter {
  public:
    void addObserver(std::string_view name, Handler handler) override;
    void post(std::string_view name) override;

    /// Calls the observers as for a notification from another process.
    void deliver(const DistributedNotification& notification) const;

    /// The names posted so far, oldest first.
    const std::vector<std::string>& posted() const { return posted_; }

  private:
    NotificationObservers<DistributedNotification> observers_;
    std::vector<std::string> posted_;
};

}  // namespace corvane
