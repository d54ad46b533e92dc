#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <variant>

namespace corvane {

/// An object that is not a text; `description` is for the log only.
struct ForeignObject {
    std::string description;
};

/// Announced between processes. The object is absent, a text, or something of another kind that a sender made
/// up.
struct DistributedNotification {
    std::string name;
    std::variant<std::monostate, std::string, ForeignObject> object;
};

/// The notification centre that the processes of one session share. Main thread only.
class DistributedNotificationCenter {
  public:
    using Handler = std::function<void(const DistributedNotification&)>;

    virtual ~DistributedNotificationCenter() = default;

    /// The handler is called on the main thread for every notification of that name, whoever sends it, until
    /// the centre is gone.
    virtual void addObserver(std::string_view name, Handler handler) = 0;

    /// Announces `name` with no object. One that cannot be sent now is sent when that is possible again, or
    /// its loss is logged.
    virtual void post(std::string_view name) = 0;
};

}  // namespace corvane
