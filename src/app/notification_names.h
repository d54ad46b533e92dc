#pragma once

#include "settings_window/account_notification_names.h"

/// Every notification name of the system; those of the Accounts tab stand with it.
namespace corvane {

/// Distributed; a host application asks for an import. Object: a JSON text with the options, or none.
inline constexpr const char* kNotificationCorvaneReloadData = "kNotificationCorvaneReloadData";

/// Distributed; an import is over and the host application may read the new files. No object.
inline constexpr const char* reportUpdateViewControllerDidFinishDistributedNotification =
    "reportUpdateViewControllerDidFinishDistributedNotification";

/// In-process; the same. Object: the import window's controller.
inline constexpr const char* reportUpdateViewControllerDidFinishNotification =
    "reportUpdateViewControllerDidFinishNotification";

}  // namespace corvane
