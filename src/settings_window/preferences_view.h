#pragma once

#include "settings_window/settings_window_view.h"

namespace corvane {

/// What the user does with the Advanced tab.
class PreferencesViewEvents {
  public:
    virtual ~PreferencesViewEvents() = default;

    /// The button.
    virtual void resetCache() = 0;
};

/// The content of the Advanced tab as the toolkit holds it: a button. Main thread only.
class PreferencesView : public TabView {
  public:
    /// Whom to tell. Null, at first and before the receiver goes: nobody.
    virtual void setEvents(PreferencesViewEvents* events) = 0;
};

}  // namespace corvane
