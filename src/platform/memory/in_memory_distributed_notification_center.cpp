#include "platform/memory/in_memory_distributed_notification_center.h"

#include <utility>

namespace corvane {

void InMemoryDistributedNotificationCenter::addObserver(std::string_view name, Handler handler) {
    observers_[std::string(name)].push_back(std::move(handler));
}

void InMemoryDistributedNotificationCenter::post(std::string_view name) {
    posted_.emplace_back(name);
}

void InMemoryDistributedNotificationCenter::deliver(const DistributedNotification& notification) const {
    const auto found = observers_.find(notification.name);
    if (found == observers_.end())
        return;
    const std::vector<Handler> handlers = found->second;  // an observer may add another one meanwhile
    for (const Handler& handler : handlers)
        handler(notification);
}

}  // namespace corvane
