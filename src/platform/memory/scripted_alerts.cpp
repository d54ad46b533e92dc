#include "platform/memory/scripted_alerts.h"

#include <utility>

namespace corvane {

AlertAnswer ScriptedAlerts::runModal(const Alert& alert) {
    shown_.push_back(alert);
    if (whileOpen_)
        whileOpen_(alert);
    if (answers_.empty())
        return {};
    AlertAnswer answer = std::move(answers_.front());
    answers_.pop_front();
    return answer;
}

}  // namespace corvane
