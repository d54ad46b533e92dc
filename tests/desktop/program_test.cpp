#include <arpa/inet.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <chrono>
#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "core/itunes_account.h"
#include "desktop/event_waiting.h"
#include "platform/memory/in_memory_log.h"
#include "platform/system/file_descriptor.h"
#include "platform/system/property_list_file_store.h"
#include "platform/system/system_clock.h"
#include "settings/settings_manger.h"
#include "support/private_session_bus.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;
using test::ChildProcess;
using testing::HasSubstr;
using testing::Not;

/// A report service that takes connections and never says a word.
class SilentService {
  public:
    SilentService() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* plain = reinterpret_cast<sockaddr*>(&address);
        EXPECT_EQ(bind(socket_.number(), plain, size), 0);
        EXPECT_EQ(listen(socket_.number(), 64), 0);
        EXPECT_EQ(getsockname(socket_.number(), plain, &size), 0);
        host_ = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    }

    const std::string& host() const { return host_; }

    bool hasCaller() const {
        pollfd waiting{.fd = socket_.number(), .events = POLLIN, .revents = 0};
        return poll(&waiting, 1, 0) == 1;
    }

  private:
    FileDescriptor socket_;
    std::string host_;
};

/// The real program as a process of its own.
class ProgramTest : public testing::Test {
  protected:
    ProgramTest() {
        environment["HOME"] = home.path();
        environment["XDG_CONFIG_HOME"] = home.path() / "config";
        environment["XDG_DATA_HOME"] = home.path() / "data";
        environment["XDG_RUNTIME_DIR"] = home.path();
        environment["DBUS_SESSION_BUS_ADDRESS"] = sessionBus.address();
        environment["QT_QPA_PLATFORM"] = "offscreen";
    }
    ~ProgramTest() override { QDBusConnection::disconnectFromBus("program-test"); }

    std::unique_ptr<ChildProcess> start(const std::string& logName = "log") {
        test::ChildProcessOptions options;
        options.command = {PROGRAM_UNDER_TEST, service.host(), ""};
        options.environment = environment;
        options.errorFile = home.path() / logName;
        return std::make_unique<ChildProcess>(options);
    }
    bool isOnBus() { return host.interface()->isServiceRegistered("com.quessartolvinger.Corvane").value(); }
    std::unique_ptr<ChildProcess> startOnBus() {
        auto program = start();
        EXPECT_TRUE(waitUntil([&] { return isOnBus(); }, 30s)) << log();
        return program;
    }
    void requestImport() {
        host.send(QDBusMessage::createSignal("/com/quessartolvinger/DistributedNotificationCenter",
                                             "com.quessartolvinger.DistributedNotificationCenter",
                                             "kNotificationCorvaneReloadData"));
    }
    void writeAccount() {
        InMemoryLog storeLog;
        const SystemClock clock;
        PropertyListFileStore store(settingsFile(), storeLog, clock);
        SettingsManger settings(store);
        const auto account = std::make_shared<ITunesAccount>("80012345", "Test");
        account->setEmail("test@example.com");
        account->setPassword("pass word");
        settings.setITunesAccounts(ITunesAccountList{account});
    }
    std::filesystem::path settingsFile() const { return home.path() / "config/corvane/settings.plist"; }
    std::filesystem::path container() const {
        return home.path() / "data/QX4ZT7M2P9.group.quessartolvinger.brindlecount";
    }
    std::string log(const std::string& logName = "log") const {
        return test::readFile(home.path() / logName);
    }

    test::TemporaryFolder home;
    test::PrivateSessionBus sessionBus;
    test::Environment environment = test::inheritedEnvironment();
    SilentService service;
    QDBusConnection host =
        QDBusConnection::connectToBus(QString::fromStdString(sessionBus.address()), "program-test");
};

TEST_F(ProgramTest, EndsWithSuccessOnEachSignalThatAsksForIt) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        const auto program = startOnBus();
        program->sendSignal(signal);
        EXPECT_EQ(program->waitForExit(10s), 0) << "signal " << signal << '\n' << log();
        EXPECT_FALSE(isOnBus());
    }
}

TEST_F(ProgramTest, EndsWithinASecondWhateverRequestsAreOpen) {
    writeAccount();
    const auto program = startOnBus();
    requestImport();
    ASSERT_TRUE(waitUntil([&] { return service.hasCaller(); }, 30s)) << log();
    const auto asked = steady_clock::now();
    program->sendSignal(SIGTERM);
    EXPECT_EQ(program->waitForExit(10s), 0) << log();
    EXPECT_LT(steady_clock::now() - asked, 1s);
    EXPECT_THAT(log(), Not(HasSubstr("failed to get data"))) << "the end is no failure";
    EXPECT_THAT(log(), Not(HasSubstr("pass")));
}

TEST_F(ProgramTest, ActivatesTheFirstAtASecondStartAndTouchesNoFile) {
    const auto first = startOnBus();
    std::filesystem::remove_all(home.path() / "config");
    const auto second = start("second log");
    EXPECT_EQ(second->waitForExit(30s), 0) << log("second log");
    EXPECT_TRUE(first->isRunning());
    EXPECT_FALSE(std::filesystem::exists(home.path() / "config"));
    first->sendSignal(SIGTERM);
    EXPECT_EQ(first->waitForExit(10s), 0);
}

TEST_F(ProgramTest, RunsAlsoWithoutABus) {
    environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + (home.path() / "no bus").native();
    const auto program = start();
    EXPECT_TRUE(waitUntil([&] { return log().find("no session bus") != std::string::npos; }, 30s));
    EXPECT_TRUE(program->isRunning());
    EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(container()); }));
    program->sendSignal(SIGTERM);
    EXPECT_TRUE(program->waitForExit(10s).has_value());
}

TEST_F(ProgramTest, OutlivesTheReaderOfItsLog) {
    environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + (home.path() / "no bus").native();
    ASSERT_EQ(mkfifo((home.path() / "log").c_str(), 0600), 0);
    FileDescriptor reader(open((home.path() / "log").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    const auto program = start();
    reader = {};
    EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(container()); }));
    program->sendSignal(SIGTERM);
    EXPECT_EQ(program->waitForExit(10s), 0);
}

TEST_F(ProgramTest, RemovesWhatAKilledProcessHasLeft) {
    const std::filesystem::path toImport = container() / "ToImport";
    const std::vector<std::filesystem::path> leftOvers{
        home.path() / "config/corvane/.corvane-0123456789abcdef.partial",
        toImport / ".corvane-fedcba9876543210.partial"};
    for (const auto& leftOver : leftOvers)
        test::writeFile(leftOver, "half a");
    test::writeFile(toImport / "report.txt", "whole");
    const auto program = startOnBus();
    const auto areGone = [&] { return !exists(leftOvers[0]) && !exists(leftOvers[1]); };
    EXPECT_TRUE(waitUntil(areGone));
    EXPECT_EQ(test::readFile(toImport / "report.txt"), "whole");
}

TEST_F(ProgramTest, IsStartedByTheBusForWhoeverActivatesIt) {
    test::writeFile(home.path() / "start",
                    "#!/bin/sh\nexport QT_QPA_PLATFORM=offscreen HOME=" + home.path().native() +
                        " XDG_CONFIG_HOME=" + home.path().native() +
                        "/config XDG_DATA_HOME=" + home.path().native() +
                        "/data\nexec " PROGRAM_UNDER_TEST " " + service.host() + " ''\n");
    sessionBus.addService("com.quessartolvinger.Corvane", "/bin/sh " + (home.path() / "start").native());
    QDBusMessage activate =
        QDBusMessage::createMethodCall("com.quessartolvinger.Corvane", "/com/quessartolvinger/Corvane",
                                       "org.freedesktop.Application", "Activate");
    activate << QVariantMap();
    EXPECT_EQ(host.call(activate, QDBus::Block, 30'000).type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(isOnBus());
    const uint id = host.interface()->servicePid("com.quessartolvinger.Corvane").value();
    ASSERT_GT(id, 1U);
    kill(static_cast<pid_t>(id), SIGTERM);
    EXPECT_TRUE(waitUntil([&] { return !isOnBus(); }));
}

}  // namespace
}  // namespace corvane
