#pragma once

#include <string>

#include "settings_window/preferences_view.h"
#include "support/fake_settings_window.h"

namespace corvane::test {

/// The Advanced tab in memory; plays the user's clicks.
class FakePreferencesView final : public PreferencesView, public Named {
  public:
    explicit FakePreferencesView(std::string name = "Advanced") : Named(std::move(name)) {}

    void setEvents(PreferencesViewEvents* events) override { events_ = events; }

    void clickReset() {
        if (events_ != nullptr)
            events_->resetCache();
    }
    bool hasEvents() const { return events_ != nullptr; }

  private:
    PreferencesViewEvents* events_ = nullptr;
};

}  // namespace corvane::test
