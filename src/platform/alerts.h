#pragma once

#include <optional>
#include <string>
#include <vector>

namespace corvane {

enum class AlertStyle { Warning, Informational, Critical };

struct AlertButton {
    std::string title;
    bool isCancel = false;  ///< answers Escape
};

/// A single-line text field inside an alert.
struct AlertTextField {
    std::string placeholder;
};

struct Alert {
    AlertStyle style = AlertStyle::Warning;
    std::string messageText;      ///< the headline; plain text
    std::string informativeText;  ///< the smaller text below; plain text, may be empty
    /// In the order shown; the first is the default. None: one acknowledgement button of the platform's.
    std::vector<AlertButton> buttons;
    std::optional<AlertTextField> accessory;
};

/// Answer codes by the button's position: 1000 for the first, 1001 for the second and so on.
inline constexpr int alertFirstButtonReturn = 1000;
inline constexpr int alertSecondButtonReturn = 1001;

struct AlertAnswer {
    int code = alertFirstButtonReturn;
    std::string accessoryText;  ///< what stands in the accessory field, exactly as typed
};

/// Questions and messages to the user. Main thread only.
class Alerts {
  public:
    virtual ~Alerts() = default;

    /// Shows the alert application-modally and returns when the user has answered. Input, painting and the
    /// bus go on meanwhile; the main queue does only when the caller is not one of its tasks.
    virtual AlertAnswer runModal(const Alert& alert) = 0;

    /// The short sound that says "not like this".
    virtual void beep() = 0;
};

}  // namespace corvane
