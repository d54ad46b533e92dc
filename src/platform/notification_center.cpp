#include "platform/notification_center.h"

#include <utility>

namespace corvane {

void NotificationCenter::addObserver(std::string_view name, Handler handler) {
    observers_[std::string(name)].push_back(std::move(handler));
}

void NotificationCenter::post(const Notification& notification) const {
    const auto found = observers_.find(notification.name);
    if (found == observers_.end())
        return;
    const std::vector<Handler> handlers = found->second;  // an observer may add another one meanwhile
    for (const Handler& handler : handlers)
        handler(notification);
}

}  // namespace corvane
