#include "desktop/qt_alerts.h"

#include <QApplication>

#include "desktop/alert_dialog.h"
#include "desktop/qt_text.h"

namespace corvane {

AlertAnswer QtAlerts::runModal(const Alert& alert) {
    Alert shown = alert;
    if (shown.buttons.empty())
        shown.buttons.push_back({strings_.localizedString("OK", "Alert"), true});
    AlertDialog dialog(shown, visibleParentWindow());
    if (!isStopped_)
        dialog.exec();
    return {alertFirstButtonReturn + static_cast<int>(dialog.answer()), toUtf8(dialog.accessoryText())};
}

void QtAlerts::beep() {
    QApplication::beep();
}

// A dialog of a window that is not on screen would not come on screen either.
QWidget* QtAlerts::visibleParentWindow() const {
    QWidget* window = parentWindow_ ? parentWindow_() : nullptr;
    const bool isOnScreen = window != nullptr && window->isVisible() && !window->isMinimized();
    return isOnScreen ? window : nullptr;
}

}  // namespace corvane
