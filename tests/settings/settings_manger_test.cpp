#include "settings/settings_manger.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/itunes_account_archive.h"
#include "settings/account_archive_builder.h"
#include "settings/store_fixtures.h"

namespace corvane {
namespace {

constexpr const char* accountsKey = "settingsKeyItunesAccounts";
constexpr const char* cacheKey = "settingsKeyReportsDownloadedCache";
constexpr const char* liteCacheKey = "settingsKeyReportsDownloadedLiteCache";

PropertyListValue demoArchive() {
    return archivedAccountList({std::make_shared<ITunesAccount>("4711", "Demo")});
}

template <typename Fixture>
class SettingsMangerTest : public testing::Test {
  protected:
    KeyValueStore& domain() { return fixture_.store(); }
    PropertyListDictionary stored() const { return fixture_.stored(); }

    /// As if an earlier run, or another program, had left the value.
    void store(const char* key, PropertyListValue value) {
        domain().setObject(key, std::move(value));
        ASSERT_TRUE(domain().synchronize());
    }

    Fixture fixture_;
};

TYPED_TEST_SUITE(SettingsMangerTest, StoreFixtures);

TYPED_TEST(SettingsMangerTest, AFreshDomainGivesAbsentListsAndNothingIsWritten) {
    const SettingsManger settings(this->domain());
    EXPECT_EQ(settings.iTunesAccounts(), std::nullopt);
    EXPECT_EQ(settings.reportsDownloadedCache(), std::nullopt);
    EXPECT_EQ(settings.reportsDownloadedLiteCache(), std::nullopt);
    EXPECT_EQ(this->stored(), PropertyListDictionary());
}

TYPED_TEST(SettingsMangerTest, KeysHaveTheirNames) {
    const SettingsManger settings(this->domain());
    EXPECT_EQ(settings.settingsKeyItunesAccounts, accountsKey);
    EXPECT_EQ(settings.settingsKeyReportsDownloadedCache, cacheKey);
    EXPECT_EQ(settings.settingsKeyReportsDownloadedLiteCache, liteCacheKey);
    EXPECT_EQ(&settings.userDefaults(), &this->domain());
}

TYPED_TEST(SettingsMangerTest, AssignedAccountsSurviveARestart) {
    SettingsManger settings(this->domain());
    auto account = std::make_shared<ITunesAccount>("4711", "Demo");
    account->setEmail("a@example.com");
    account->setPassword("");
    settings.setITunesAccounts(ITunesAccountList{account});

    const SettingsManger restarted(this->domain());
    const auto accounts = restarted.iTunesAccounts();
    ASSERT_TRUE(accounts);
    ASSERT_EQ(accounts->size(), 1U);
    EXPECT_EQ(accounts->front()->vendorID(), "4711");
    EXPECT_EQ(accounts->front()->email(), "a@example.com");
    EXPECT_EQ(accounts->front()->password(), "");
    EXPECT_EQ(accounts->front()->name(), "Demo");
}

TYPED_TEST(SettingsMangerTest, AccountsAreStoredAsOneArchive) {
    SettingsManger settings(this->domain());
    settings.setITunesAccounts(ITunesAccountList{std::make_shared<ITunesAccount>("4711", "Demo")});
    EXPECT_EQ(this->stored(), (PropertyListDictionary{{accountsKey, AccountArchiveBuilder().bytes()}}));
}

TYPED_TEST(SettingsMangerTest, AnEmptyAccountListIsStoredAndAnAbsentOneRemovesTheKey) {
    SettingsManger settings(this->domain());
    settings.setITunesAccounts(ITunesAccountList{});
    EXPECT_EQ(this->stored(), (PropertyListDictionary{{accountsKey, archivedAccountList({})}}));
    EXPECT_EQ(SettingsManger(this->domain()).iTunesAccounts(), ITunesAccountList());
    settings.setITunesAccounts(std::nullopt);
    EXPECT_EQ(settings.iTunesAccounts(), std::nullopt);
    EXPECT_EQ(this->stored(), PropertyListDictionary());
}

TYPED_TEST(SettingsMangerTest, CachesAreStoredAsPlainListsInTheirOrder) {
    SettingsManger settings(this->domain());
    settings.setReportsDownloadedCache(ReportKeys{"20150104", "201501", "2014", "20150104"});
    settings.setReportsDownloadedLiteCache(ReportKeys{""});
    EXPECT_EQ(this->stored(), (PropertyListDictionary{
                                  {cacheKey, PropertyListArray{"20150104", "201501", "2014", "20150104"}},
                                  {liteCacheKey, PropertyListArray{""}},
                              }));
    const SettingsManger restarted(this->domain());
    EXPECT_EQ(restarted.reportsDownloadedCache(), (ReportKeys{"20150104", "201501", "2014", "20150104"}));
    EXPECT_EQ(restarted.reportsDownloadedLiteCache(), ReportKeys{""});
}

TYPED_TEST(SettingsMangerTest, AnEmptyCacheIsStoredAndAnAbsentOneRemovesTheKey) {
    SettingsManger settings(this->domain());
    settings.setReportsDownloadedCache(ReportKeys{});
    settings.setReportsDownloadedLiteCache(ReportKeys{});
    EXPECT_EQ(this->stored(),
              (PropertyListDictionary{{cacheKey, PropertyListArray{}}, {liteCacheKey, PropertyListArray{}}}));
    EXPECT_EQ(SettingsManger(this->domain()).reportsDownloadedCache(), ReportKeys());
    settings.setReportsDownloadedCache(std::nullopt);
    EXPECT_EQ(this->stored(), (PropertyListDictionary{{liteCacheKey, PropertyListArray{}}}));
    settings.setReportsDownloadedLiteCache(std::nullopt);
    EXPECT_EQ(this->stored(), PropertyListDictionary());
}

TYPED_TEST(SettingsMangerTest, ReadersGetACopyOfTheListWhoseRecordsAreShared) {
    SettingsManger settings(this->domain());
    const auto account = std::make_shared<ITunesAccount>("4711", "Demo");
    settings.setITunesAccounts(ITunesAccountList{account});
    auto copy = settings.iTunesAccounts();
    copy->clear();
    ASSERT_EQ(settings.iTunesAccounts()->size(), 1U);
    EXPECT_EQ(settings.iTunesAccounts()->front(), account);
}

TYPED_TEST(SettingsMangerTest, LoadReadsTheDomainAgain) {
    SettingsManger settings(this->domain());
    this->store(cacheKey, PropertyListArray{"2014"});
    EXPECT_EQ(settings.reportsDownloadedCache(), std::nullopt);
    settings.load();
    EXPECT_EQ(settings.reportsDownloadedCache(), ReportKeys{"2014"});
}

TYPED_TEST(SettingsMangerTest, LoadWritesAForeignArchiveBackInOurForm) {
    AccountArchiveBuilder builder;
    builder.add("unused");
    this->store(accountsKey, builder.bytes());
    const SettingsManger settings(this->domain());
    EXPECT_EQ(this->stored().at(accountsKey), demoArchive());
}

TYPED_TEST(SettingsMangerTest, AccountsThatCannotBeReadLeaveThePropertyAndStayInTheDomain) {
    AccountArchiveBuilder otherClass;
    otherClass.at(AccountArchiveBuilder::recordClass).at("$classname") = "Other";
    const std::vector<PropertyListValue> values = {
        PropertyListArray{"a", "b"},
        "text",
        std::int64_t{5},
        PropertyListDictionary{},
        Bytes{},
        Bytes{1, 2, 3},
        otherClass.bytes(),
        writeBinaryPropertyList(
            PropertyListDictionary{{"$archiver", "NSKeyedArchiver"},
                                   {"$objects", PropertyListArray{"$null"}},
                                   {"$top", PropertyListDictionary{{"root", PropertyListUid{0}}}},
                                   {"$version", std::int64_t{100000}}}),
    };
    for (const PropertyListValue& value : values) {
        this->store(accountsKey, value);
        SettingsManger settings(this->domain());
        EXPECT_EQ(settings.iTunesAccounts(), std::nullopt) << value.content().index();
        EXPECT_EQ(this->stored().at(accountsKey), value) << value.content().index();

        settings.setITunesAccounts(ITunesAccountList{std::make_shared<ITunesAccount>("4711", "Demo")});
        this->store(accountsKey, value);
        settings.load();
        EXPECT_EQ(settings.iTunesAccounts()->size(), 1U) << value.content().index();
        EXPECT_EQ(this->stored().at(accountsKey), value) << value.content().index();
    }
}

// Compilers differ in what a list in braces around a single list is.
std::vector<PropertyListValue> noListsOfTexts() {
    return {
        PropertyListArray{"2014", std::int64_t{2015}},
        PropertyListArray(1, true),
        PropertyListArray(1, PropertyListArray{"2014"}),
        "2014",
        std::int64_t{2014},
        PropertyListDictionary{{"2014", "2014"}},
        Bytes{1},
    };
}

TYPED_TEST(SettingsMangerTest, CachesThatAreNoListsOfTextsLeaveThePropertyAndStayInTheDomain) {
    for (const PropertyListValue& value : noListsOfTexts()) {
        this->store(cacheKey, value);
        this->store(liteCacheKey, value);
        SettingsManger settings(this->domain());
        EXPECT_EQ(settings.reportsDownloadedCache(), std::nullopt) << value.content().index();
        EXPECT_EQ(settings.reportsDownloadedLiteCache(), std::nullopt) << value.content().index();

        settings.setReportsDownloadedCache(ReportKeys{"kept"});
        settings.setReportsDownloadedLiteCache(ReportKeys{"kept too"});
        this->store(cacheKey, value);
        this->store(liteCacheKey, value);
        settings.load();
        EXPECT_EQ(settings.reportsDownloadedCache(), ReportKeys{"kept"}) << value.content().index();
        EXPECT_EQ(settings.reportsDownloadedLiteCache(), ReportKeys{"kept too"}) << value.content().index();
        EXPECT_EQ(this->stored().at(cacheKey), value) << value.content().index();
        EXPECT_EQ(this->stored().at(liteCacheKey), value) << value.content().index();
    }
}

TYPED_TEST(SettingsMangerTest, AMissingKeyLeavesThePropertyAsItWas) {
    SettingsManger settings(this->domain());
    settings.setReportsDownloadedCache(ReportKeys{"2014"});
    this->domain().setObject(cacheKey, std::nullopt);
    ASSERT_TRUE(this->domain().synchronize());
    settings.load();
    EXPECT_EQ(settings.reportsDownloadedCache(), ReportKeys{"2014"});
    EXPECT_EQ(this->stored(), PropertyListDictionary());
}

TYPED_TEST(SettingsMangerTest, KeysThatAreNotOursSurvive) {
    this->store("window frame", "0 0 800 600");
    SettingsManger settings(this->domain());
    settings.setReportsDownloadedCache(ReportKeys{});
    EXPECT_EQ(this->stored().at("window frame"), PropertyListValue("0 0 800 600"));
}

/// Counts what reaches the domain, and can fail to write it.
class CountingStore final : public KeyValueStore {
  public:
    std::optional<PropertyListValue> objectForKey(std::string_view key) const override {
        return memory_.objectForKey(key);
    }
    void setObject(std::string_view key, std::optional<PropertyListValue> value) override {
        assignedKeys_.emplace_back(key);
        memory_.setObject(key, std::move(value));
    }
    bool synchronize() override {
        assignedKeys_.emplace_back("synchronize");
        return succeeds_;
    }

    void setSucceeds(bool succeeds) { succeeds_ = succeeds; }
    std::vector<std::string> takeCalls() { return std::exchange(assignedKeys_, {}); }

  private:
    InMemoryKeyValueStore memory_;
    std::vector<std::string> assignedKeys_;
    bool succeeds_ = true;
};

using Calls = std::vector<std::string>;

TEST(SettingsManger, EveryAssignmentWritesAndFlushesEqualOnesToo) {
    CountingStore store;
    SettingsManger settings(store);
    EXPECT_EQ(store.takeCalls(), Calls());
    settings.setReportsDownloadedCache(ReportKeys{"2014"});
    settings.setReportsDownloadedCache(ReportKeys{"2014"});
    EXPECT_EQ(store.takeCalls(), (Calls{cacheKey, "synchronize", cacheKey, "synchronize"}));
    settings.setITunesAccounts(std::nullopt);
    settings.setReportsDownloadedLiteCache(std::nullopt);
    EXPECT_EQ(store.takeCalls(), (Calls{accountsKey, "synchronize", liteCacheKey, "synchronize"}));
}

TEST(SettingsManger, LoadWritesEachValueBackInOrder) {
    CountingStore store;
    store.setObject(accountsKey, demoArchive());
    store.setObject(cacheKey, PropertyListArray{"2014"});
    store.setObject(liteCacheKey, PropertyListArray{});
    store.takeCalls();
    const SettingsManger settings(store);
    EXPECT_EQ(store.takeCalls(),
              (Calls{accountsKey, "synchronize", cacheKey, "synchronize", liteCacheKey, "synchronize"}));
}

TEST(SettingsManger, AFailedFlushIsIgnored) {
    CountingStore store;
    store.setSucceeds(false);
    SettingsManger settings(store);
    settings.setReportsDownloadedCache(ReportKeys{"2014"});
    EXPECT_EQ(settings.reportsDownloadedCache(), ReportKeys{"2014"});
}

TEST(SettingsManger, SharedManagerIsTheOneThatTheProgramMade) {
    InMemoryKeyValueStore store;
    SettingsManger settings(store);
    SettingsManger::setSharedManager(&settings);
    EXPECT_EQ(&SettingsManger::sharedManager(), &settings);
    SettingsManger::setSharedManager(nullptr);
    EXPECT_DEATH(SettingsManger::sharedManager(), "before the program made it");
}

}  // namespace
}  // namespace corvane
