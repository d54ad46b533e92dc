#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/notification_observers.h"

namespace corvane {

/// Announced inside this process. The object is what the notification is about, by identity; absent (null)
/// when it is about nothing in particular.
struct Notification {
    std::string name;
    std::shared_ptr<const void> object;
};

/// The in-process notification centre. Observers are called synchronously, on the poster's thread, in the
/// order in which they were added. Main thread only.
class NotificationCenter {
  public:
    using Handler = std::function<void(const Notification&)>;

    /// The handler is called for every notification of that name, until the centre is gone.
    void addObserver(std::string_view name, Handler handler);

    void post(const Notification& notification) const;

  private:
    NotificationObservers<Notification> observers_;
};

}  // namespace corvane
