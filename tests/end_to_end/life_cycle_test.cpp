// Starting, reopening and ending the real program, and the settings that it finds.

#include <gmock/gmock.h>

#include <QByteArray>
#include <csignal>

#include "end_to_end/end_to_end_environment.h"
#include "end_to_end/report_days.h"

namespace corvane::test {
namespace {

using testing::HasSubstr;

class LifeCycleTest : public EndToEndTest {};

// The accounts as a Mac lays them out: one record, without e-mail and password.
constexpr const char* archiveOfAMac =
    "YnBsaXN0MDDUAQIDBAUGIyRYJHZlcnNpb25YJG9iamVjdHNZJGFyY2hpdmVyVCR0b3ASAAGGoKcHCA4YGRogVSRudWxs0gkKCw1a"
    "TlMub2JqZWN0c1YkY2xhc3OhDIACgAbVDxAREgoTFBQWF1h2ZW5kb3JJRFVlbWFpbFhwYXNzd29yZFRuYW1lgAOAAIAAgASABVQ0"
    "NzExVERlbW/SGxwdHlokY2xhc3NuYW1lWCRjbGFzc2VzXxAVQ29ydmFuZS5JVHVuZXNBY2NvdW50oh0fWE5TT2JqZWN00hscISJX"
    "TlNBcnJheaIhH18QD05TS2V5ZWRBcmNoaXZlctElJlRyb290gAEACAARABoAIwAtADIANwA/AEUASgBVAFwAXgBgAGIAbQB2AHwA"
    "hQCKAIwAjgCQAJIAlACZAJ4AowCuALcAzwDSANsA4ADoAOsA/QEAAQUAAAAAAAACAQAAAAAAAAAnAAAAAAAAAAAAAAAAAAABBw==";

Bytes archiveOfAMacAsBytes() {
    const QByteArray bytes = QByteArray::fromBase64(archiveOfAMac);
    return {bytes.begin(), bytes.end()};
}

TEST_F(LifeCycleTest, ReadsTheSettingsOfAMac) {
    writeSettings({{"settingsKeyItunesAccounts", archiveOfAMacAsBytes()},
                   {"NSWindow Frame settings", "196 240 480 270 0 0 1440 877"}});
    startProgram();
    // An account without a password is left out of the run, which is over at once. Without any account there
    // would be no run, and so no end.
    host_->requestImport(R"({"isLite": true})");
    EXPECT_TRUE(host_->waitForFinishes(1, patience)) << log();
    EXPECT_THAT(log(), HasSubstr("updateDailyReports Lite:1"));
    EXPECT_TRUE(program_->isRunning());

    const PropertyListDictionary written = settings();
    ASSERT_TRUE(written.contains("settingsKeyItunesAccounts"));
    const auto* archive = written.at("settingsKeyItunesAccounts").get<Bytes>();
    ASSERT_NE(archive, nullptr);
    const auto accounts = unarchivedAccountList(*archive);
    ASSERT_TRUE(accounts);
    ASSERT_EQ(accounts->size(), 1U);
    EXPECT_EQ(accounts->front()->vendorID(), "4711");
    EXPECT_EQ(accounts->front()->name(), "Demo");
    EXPECT_EQ(accounts->front()->email(), std::nullopt);
    EXPECT_TRUE(written.contains("NSWindow Frame settings")) << "a foreign key was lost";
}

TEST_F(LifeCycleTest, MovesUnreadableSettingsAsideAndStaysTheOnlyInstance) {
    writeFile(settingsFile(), "this was never a property list");
    startProgram();
    // The name is taken first: only who owns it may touch the settings.
    ASSERT_TRUE(waitUntil([this] { return log().find("unreadable") != std::string::npos; }, patience))
        << log();
    std::string aside;
    for (const std::string& name : filesBelow(settingsFile().parent_path())) {
        if (name.starts_with("settings.plist.unreadable-"))
            aside = name;
    }
    EXPECT_EQ(readFile(settingsFile().parent_path() / aside), "this was never a property list");

    EXPECT_EQ(run({TEST_PROGRAM}), 0) << "a second start activates the first and ends";
    EXPECT_TRUE(program_->isRunning());
    EXPECT_TRUE(host_->activate());
    EXPECT_TRUE(program_->isRunning());

    program_->sendSignal(SIGTERM);
    EXPECT_TRUE(program_->waitForExit(quitLimit).has_value()) << "still running";
    EXPECT_TRUE(host_->waitForProgram(false, patience));
}

}  // namespace
}  // namespace corvane::test
