#pragma once

/// What the Accounts tab announces inside this process.
namespace corvane {

/// Object: the account whose name was changed, or that was added.
inline constexpr const char* kNotificationAccountNameChanged = "kNotificationAccountNameChanged";

/// Object: the account whose name, password or e-mail was changed.
inline constexpr const char* kNotificationAccountDetailsChanged = "kNotificationAccountDetailsChanged";

}  // namespace corvane
