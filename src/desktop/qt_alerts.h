#pragma once

#include <QWidget>
#include <functional>

#include "platform/alerts.h"
#include "platform/localized_strings.h"

namespace corvane {

/// Alerts as application-modal dialogs.
class QtAlerts final : public Alerts {
  public:
    /// Names the window that alerts belong to while it is on screen; null is none. Its windows outlive the
    /// alerts.
    using ParentWindow = std::function<QWidget*()>;

    /// The strings must outlive the alerts.
    explicit QtAlerts(const LocalizedStrings& strings) : strings_(strings) {}

    void setParentWindow(ParentWindow parentWindow) { parentWindow_ = std::move(parentWindow); }

    AlertAnswer runModal(const Alert& alert) override;
    void beep() override;

    /// From now on alerts answer at once, as if cancelled: the program is about to end.
    void stop() { isStopped_ = true; }

  private:
    QWidget* visibleParentWindow() const;

    const LocalizedStrings& strings_;
    ParentWindow parentWindow_;
    bool isStopped_ = false;
};

}  // namespace corvane
