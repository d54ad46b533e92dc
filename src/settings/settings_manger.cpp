#include "settings/settings_manger.h"

#include <utility>

#include "core/itunes_account_archive.h"
#include "platform/fatal_error.h"

namespace corvane {

namespace {

SettingsManger* sharedInstance = nullptr;

std::optional<PropertyListValue> stored(const std::optional<ReportKeys>& keys) {
    if (!keys)
        return std::nullopt;
    return PropertyListArray(keys->begin(), keys->end());
}

/// Absent when the value is not a list, or not every element is a text.
std::optional<ReportKeys> loaded(const std::optional<PropertyListValue>& value) {
    const PropertyListArray* array = value ? value->get<PropertyListArray>() : nullptr;
    if (array == nullptr)
        return std::nullopt;
    ReportKeys keys;
    keys.reserve(array->size());
    for (const PropertyListValue& element : *array) {
        const auto* key = element.get<std::string>();
        if (key == nullptr)
            return std::nullopt;
        keys.push_back(*key);
    }
    return keys;
}

}  // namespace

SettingsManger::SettingsManger(KeyValueStore& userDefaults) : userDefaults_(userDefaults) {
    load();
}

SettingsManger& SettingsManger::sharedManager() {
    if (sharedInstance == nullptr)
        fatalError("sharedManager of SettingsManger was used before the program made it");
    return *sharedInstance;
}

void SettingsManger::setSharedManager(SettingsManger* manager) {
    sharedInstance = manager;
}

void SettingsManger::load() {
    if (const auto archive = userDefaults_.objectForKey(settingsKeyItunesAccounts)) {
        const auto* bytes = archive->get<Bytes>();
        std::optional<ITunesAccountList> accounts = bytes ? unarchivedAccountList(*bytes) : std::nullopt;
        if (accounts)
            setITunesAccounts(std::move(accounts));
    }
    if (auto keys = loaded(userDefaults_.objectForKey(settingsKeyReportsDownloadedCache)))
        setReportsDownloadedCache(std::move(keys));
    if (auto keys = loaded(userDefaults_.objectForKey(settingsKeyReportsDownloadedLiteCache)))
        setReportsDownloadedLiteCache(std::move(keys));
}

void SettingsManger::setITunesAccounts(std::optional<ITunesAccountList> accounts) {
    iTunesAccounts_ = std::move(accounts);
    std::optional<PropertyListValue> archive;
    if (iTunesAccounts_)
        archive = archivedAccountList(*iTunesAccounts_);
    userDefaults_.setObject(settingsKeyItunesAccounts, std::move(archive));
    userDefaults_.synchronize();
}

void SettingsManger::setReportsDownloadedCache(std::optional<ReportKeys> keys) {
    reportsDownloadedCache_ = std::move(keys);
    userDefaults_.setObject(settingsKeyReportsDownloadedCache, stored(reportsDownloadedCache_));
    userDefaults_.synchronize();
}

void SettingsManger::setReportsDownloadedLiteCache(std::optional<ReportKeys> keys) {
    reportsDownloadedLiteCache_ = std::move(keys);
    userDefaults_.setObject(settingsKeyReportsDownloadedLiteCache, stored(reportsDownloadedLiteCache_));
    userDefaults_.synchronize();
}

}  // namespace corvane
