#include "platform/memory/in_memory_distributed_notification_center.h"

#include <utility>

namespace corvane {

void InMemoryDistributedNotificationCenter::addObserver(std::string_view name, Handler handler) {
    observers_.add(name, std::move(handler));
}

void InMemoryDistributedNotificationCenter::post(std::string_view name) {
    posted_.emplace_back(name);
}

void InMemoryDistributedNotificationCenter::deliver(const DistributedNotification& notification) const {
    observers_.notify(notification);
}

}  // namespace corvane
