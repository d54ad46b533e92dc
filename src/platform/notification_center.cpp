#include "platform/notification_center.h"

#include <utility>

namespace corvane {

void NotificationCenter::addObserver(std::string_view name, Handler handler) {
    observers_.add(name, std::move(handler));
}

void NotificationCenter::post(const Notification& notification) const {
    observers_.notify(notification);
}

}  // namespace corvane
