#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/itunes_account.h"
#include "platform/key_value_store.h"

namespace corvane {

using ReportKeys = std::vector<std::string>;

/// The settings that survive a restart: the accounts, and for each edition of the host application the keys
/// of the reports already fetched. An absent list is no entry in the domain; an empty list is an entry.
/// Assigning writes the value through to the domain and flushes it, every time; a failed flush is ignored.
/// Main thread only.
class SettingsManger {
  public:
    /// Loads from the domain, which must outlive the store.
    explicit SettingsManger(KeyValueStore& userDefaults);

    SettingsManger(const SettingsManger&) = delete;
    SettingsManger& operator=(const SettingsManger&) = delete;

    /// The store that the program made. Calling it before there is one is a fault.
    static SettingsManger& sharedManager();
    /// Null takes the shared store back.
    static void setSharedManager(SettingsManger* manager);

    /// Reads the three values again. One that cannot be read, or is not of its kind, leaves the property as
    /// it was and stays in the domain; one that can is assigned, and thereby written back.
    void load();

    /// A copy of the list; the records in it are shared.
    std::optional<ITunesAccountList> iTunesAccounts() const { return iTunesAccounts_; }
    void setITunesAccounts(std::optional<ITunesAccountList> accounts);

    const std::optional<ReportKeys>& reportsDownloadedCache() const { return reportsDownloadedCache_; }
    void setReportsDownloadedCache(std::optional<ReportKeys> keys);

    const std::optional<ReportKeys>& reportsDownloadedLiteCache() const {
        return reportsDownloadedLiteCache_;
    }
    void setReportsDownloadedLiteCache(std::optional<ReportKeys> keys);

    KeyValueStore& userDefaults() const { return userDefaults_; }

    const std::string settingsKeyItunesAccounts = "settingsKeyItunesAccounts";
    const std::string settingsKeyReportsDownloadedCache = "settingsKeyReportsDownloadedCache";
    const std::string settingsKeyReportsDownloadedLiteCache = "settingsKeyReportsDownloadedLiteCache";

  private:
    KeyValueStore& userDefaults_;
    std::optional<ITunesAccountList> iTunesAccounts_;
    std::optional<ReportKeys> reportsDownloadedCache_;
    std::optional<ReportKeys> reportsDownloadedLiteCache_;
};

}  // namespace corvane
