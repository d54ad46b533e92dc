#pragma once

#include <deque>
#include <functional>
#include <vector>

#include "platform/alerts.h"

namespace corvane {

/// Keeps every alert and answers it at once: with the next prepared answer, else with the first button.
class ScriptedAlerts final : public Alerts {
  public:
    AlertAnswer runModal(const Alert& alert) override;
    void beep() override { ++beepCount_; }

    void prepareAnswer(AlertAnswer answer) { answers_.push_back(std::move(answer)); }

    /// Called while an alert is open, before it is answered.
    void whileOpen(std::function<void(const Alert&)> action) { whileOpen_ = std::move(action); }

    const std::vector<Alert>& shown() const { return shown_; }
    int beepCount() const { return beepCount_; }

  private:
    std::deque<AlertAnswer> answers_;
    std::function<void(const Alert&)> whileOpen_;
    std::vector<Alert> shown_;
    int beepCount_ = 0;
};

}  // namespace corvane
