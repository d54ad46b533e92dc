#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// One sales-report account. Each field is absent or a text; an empty text is a text. A record has identity:
/// lists share it, and two records with equal fields are two records. Main thread only.
class ITunesAccount {
  public:
    ITunesAccount() = delete;

    /// A new account; e-mail and password stay absent. Stands for `initWithVendorID:withName:`.
    ITunesAccount(std::string vendorID, std::string name);

    ITunesAccount(const ITunesAccount&) = delete;
    ITunesAccount& operator=(const ITunesAccount&) = delete;

    const std::optional<std::string>& vendorID() const { return vendorID_; }
    const std::optional<std::string>& email() const { return email_; }
    const std::optional<std::string>& password() const { return password_; }
    const std::optional<std::string>& name() const { return name_; }

    void setVendorID(std::optional<std::string> vendorID) { vendorID_ = std::move(vendorID); }
    void setEmail(std::optional<std::string> email) { email_ = std::move(email); }
    void setPassword(std::optional<std::string> password) { password_ = std::move(password); }
    void setName(std::optional<std::string> name) { name_ = std::move(name); }

  private:
    std::optional<std::string> vendorID_;  ///< the vendor number under which the service files the reports
    std::optional<std::string> email_;     ///< the sign-in name
    std::optional<std::string> password_;  ///< in clear text, also where it is stored
    std::optional<std::string> name_;      ///< what the user calls the account
};

/// A list whose records are shared with every other copy of the list.
using ITunesAccountList = std::vector<std::shared_ptr<ITunesAccount>>;

}  // namespace corvane
