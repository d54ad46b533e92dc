#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvane {

/// Who wants to know of which notification: what every notification centre keeps. `Announced` is the kind of
/// notification; it has a `name`. Not synchronised.
template <typename Announced>
class NotificationObservers {
  public:
    using Handler = std::function<void(const Announced&)>;

    void add(std::string_view name, Handler handler) {
        handlers_[std::string(name)].push_back(std::move(handler));
    }

    /// Calls the handlers for that name, in the order in which they were added. One that is added meanwhile
    /// is called from the next time on.
    void notify(const Announced& notification) const {
        const auto found = handlers_.find(notification.name);
        if (found == handlers_.end())
            return;
        const std::vector<Handler> handlers = found->second;  // a handler may add another one meanwhile
        for (const Handler& handler : handlers)
            handler(notification);
    }

  private:
    std::map<std::string, std::vector<Handler>, std::less<>> handlers_;
};

}  // namespace corvane
