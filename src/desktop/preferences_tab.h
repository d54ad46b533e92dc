#pragma once

#include <QObject>

#include "desktop/qt_tab_view.h"
#include "platform/localized_strings.h"
#include "settings_window/preferences_view.h"

namespace corvane {

/// The Advanced tab's content.
class PreferencesTab final : public PreferencesView, public QtTabView {
  public:
    explicit PreferencesTab(const LocalizedStrings& strings);

    void setEvents(PreferencesViewEvents* events) override { events_ = events; }

  private:
    PreferencesViewEvents* events_ = nullptr;
    QObject connections_;  // goes first: the button may send signals while it is destroyed
};

}  // namespace corvane
