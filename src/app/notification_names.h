#pragma once

/// Every notification name of the system.
namespace corvane {

/// Distributed; a host application asks for an import. Object: a JSON text with the options, or none.
inline constexpr const char* kNotificationCorvaneReloadData = "kNotificationCorvaneReloadData";

/// Distributed; an import is over and the host application may read the new files. No object.
inline constexpr const char* reportUpdateViewControllerDidFinishDistributedNotification =
    "reportUpdateViewControllerDidFinishDistributedNotification";

/// In-process; the same. Object: the import window's controller.
inline constexpr const char* reportUpdateViewControllerDidFinishNotification =
    "reportUpdateViewControllerDidFinishNotification";

/// In-process; object: the account whose name was changed, or that was added.
inline constexpr const char* kNotificationAccountNameChanged = "kNotificationAccountNameChanged";

/// In-process; object: the account whose name, password or e-mail was changed.
inline constexpr const char* kNotificationAccountDetailsChanged = "kNotificationAccountDetailsChanged";

}  // namespace corvane
