#include <gmock/gmock.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "desktop/application_service.h"
#include "desktop/dbus_notification_center.h"
#include "desktop/event_waiting.h"
#include "desktop/session_bus.h"
#include "platform/memory/in_memory_log.h"
#include "support/private_session_bus.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* finishName = "reportUpdateViewControllerDidFinishDistributedNotification";
constexpr const char* reloadName = "kNotificationCorvaneReloadData";

/// One program's half of the session bus.
struct Program {
    InMemoryLog log;
    SessionBus bus{log};
    DbusNotificationCenter center{bus, log};
    int activations = 0;
    int quits = 0;
    ApplicationService service{
        bus,
        log,
        {.activate = [this] { ++activations; }, .actions = {{QStringLiteral("quit"), [this] { ++quits; }}}}};
    std::vector<DistributedNotification> received;

    /// On the bus, and known to it as a listener.
    void join() {
        bus.join();
        bus.connection().call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                             "org.freedesktop.DBus", "GetId"));
    }
    void listenTo(const std::string& name) {
        center.addObserver(name, [this](const auto& notification) { received.push_back(notification); });
    }
};

class BusTest : public testing::Test {
  protected:
    BusTest() { qputenv("DBUS_SESSION_BUS_ADDRESS", sessionBus.address().c_str()); }
    ~BusTest() override {
        qunsetenv("DBUS_SESSION_BUS_ADDRESS");
        for (int i = 1; i <= hostConnections; ++i)
            QDBusConnection::disconnectFromBus(QStringLiteral("host-%1").arg(i));
    }

    /// Another process's connection.
    QDBusConnection host() {
        return QDBusConnection::connectToBus(QString::fromStdString(sessionBus.address()),
                                             QStringLiteral("host-%1").arg(++hostConnections));
    }
    static QDBusMessage notification(const char* name) {
        return QDBusMessage::createSignal("/com/quessartolvinger/DistributedNotificationCenter",
                                          "com.quessartolvinger.DistributedNotificationCenter", name);
    }
    static QDBusMessage applicationCall(const char* method) {
        return QDBusMessage::createMethodCall("com.quessartolvinger.Corvane", "/com/quessartolvinger/Corvane",
                                              "org.freedesktop.Application", method);
    }
    /// Calls while the event loop of the program that is called runs.
    static QDBusMessage call(const QDBusConnection& connection, const QDBusMessage& message) {
        QDBusPendingCallWatcher watcher(connection.asyncCall(message));
        EXPECT_TRUE(waitUntil([&] { return watcher.isFinished(); }));
        return watcher.reply();
    }

    test::PrivateSessionBus sessionBus;
    int hostConnections = 0;
};

TEST_F(BusTest, DeliversNotificationsOfOthersWithTheirObject) {
    Program program;
    program.listenTo(reloadName);
    program.join();
    QDBusConnection sender = host();

    QDBusMessage withText = notification(reloadName);
    withText << QStringLiteral("{\"isLite\": true, \"\xc3\xa4\": \"%20%1\"}");
    const std::vector<QDBusMessage> sent{notification(reloadName), withText};
    for (const QDBusMessage& message : sent)
        sender.send(message);
    ASSERT_TRUE(waitUntil([&] { return program.received.size() == 2; }));
    EXPECT_EQ(program.received[0].name, reloadName);
    EXPECT_TRUE(std::holds_alternative<std::monostate>(program.received[0].object));
    EXPECT_EQ(std::get<std::string>(program.received[1].object),
              withText.arguments().first().toString().toStdString());
}

TEST_F(BusTest, DeliversObjectsThatAreNoTextAsForeign) {
    struct Case {
        QVariantList arguments;
        std::string description;
    };
    const std::vector<Case> cases{
        {{42}, "<i 42>"},
        {{true}, "<b true>"},
        {{QVariant::fromValue(QDBusVariant("text"))}, "<v>"},
        {{QVariantMap{{"isLite", true}}}, "<a{sv}>"},
        {{QStringList{"a", "b"}}, "<as>"},
        {{"text", "more"}, "<ss>"},
    };
    Program program;
    program.listenTo(reloadName);
    program.join();
    QDBusConnection sender = host();
    for (const Case& item : cases) {
        program.received.clear();
        QDBusMessage message = notification(reloadName);
        message.setArguments(item.arguments);
        sender.send(message);
        ASSERT_TRUE(waitUntil([&] { return !program.received.empty(); })) << item.description;
        const auto* object = std::get_if<ForeignObject>(&program.received.front().object);
        ASSERT_NE(object, nullptr) << item.description;
        EXPECT_EQ(object->description, item.description);
    }
}

TEST_F(BusTest, IgnoresSignalsOfAnotherNamePathOrInterface) {
    Program program;
    program.listenTo(reloadName);
    program.join();
    QDBusConnection sender = host();
    sender.send(notification("somethingElse"));
    sender.send(QDBusMessage::createSignal("/elsewhere", "com.quessartolvinger.DistributedNotificationCenter",
                                           reloadName));
    sender.send(QDBusMessage::createSignal("/com/quessartolvinger/DistributedNotificationCenter",
                                           "com.example.Other", reloadName));
    QDBusMessage last = notification(reloadName);
    last << QStringLiteral("last");
    sender.send(last);
    ASSERT_TRUE(waitUntil([&] { return !program.received.empty(); }));
    ASSERT_EQ(program.received.size(), 1U);
    EXPECT_EQ(std::get<std::string>(program.received.front().object), "last");
}

TEST_F(BusTest, AnnouncesWithNoObject) {
    Program program;
    Program listener;
    program.join();
    listener.join();
    listener.listenTo(finishName);
    program.center.post(finishName);
    ASSERT_TRUE(waitUntil([&] { return !listener.received.empty(); }));
    EXPECT_TRUE(std::holds_alternative<std::monostate>(listener.received.front().object));
}

TEST_F(BusTest, HasSentEverythingWhenItWasFlushed) {
    Program listener;
    listener.join();
    listener.listenTo(finishName);
    {
        Program program;
        program.join();
        for (int i = 0; i < 100; ++i)
            program.center.post(finishName);
        EXPECT_TRUE(program.center.flush(5s));
    }
    EXPECT_TRUE(waitUntil([&] { return listener.received.size() == 100; }));
}

TEST_F(BusTest, HearsARequestThatCameBeforeItsObserverWasThere) {
    Program program;
    program.join();
    ASSERT_EQ(program.service.start(), ApplicationService::Start::OwnsName);
    QDBusConnection sender = host();
    sender.send(notification(reloadName));
    EXPECT_EQ(sender
                  .call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                       "org.freedesktop.DBus", "GetId"))
                  .type(),
              QDBusMessage::ReplyMessage);
    program.listenTo(reloadName);
    EXPECT_TRUE(waitUntil([&] { return program.received.size() == 1; }));
}

TEST_F(BusTest, StartsWithoutABusAndJoinsItWhenItIsThere) {
    sessionBus.end();
    Program program;
    program.listenTo(reloadName);
    program.join();
    EXPECT_FALSE(program.bus.isJoined());
    EXPECT_EQ(program.service.start(), ApplicationService::Start::WithoutBus);
    program.center.post(finishName);

    sessionBus.startAgain();
    Program listener;
    listener.listenTo(finishName);
    listener.join();
    EXPECT_TRUE(waitUntil([&] { return program.bus.isJoined(); }));
    EXPECT_TRUE(waitUntil([&] { return !listener.received.empty(); })) << "what was posted meanwhile";
    host().send(notification(reloadName));
    EXPECT_TRUE(waitUntil([&] { return !program.received.empty(); }));
    const QDBusConnection caller = host();
    EXPECT_TRUE(waitUntil([&] {
        return call(caller, applicationCall("Activate") << QVariantMap()).type() ==
               QDBusMessage::ReplyMessage;
    }));
    EXPECT_GE(program.activations, 1);
    EXPECT_THAT(
        program.log.lines(),
        ElementsAre("no session bus: host applications cannot ask for imports until it is there again",
                    "joined the session bus again"));
}

TEST_F(BusTest, NoticesALostBusAndJoinsItAgainWithItsName) {
    Program program;
    program.listenTo(reloadName);
    program.join();
    ASSERT_EQ(program.service.start(), ApplicationService::Start::OwnsName);

    sessionBus.end();
    ASSERT_TRUE(waitUntil([&] { return !program.log.lines().empty(); })) << "noticed without a message sent";
    EXPECT_FALSE(program.bus.isJoined());
    program.center.post(finishName);
    EXPECT_FALSE(waitUntil([&] { return program.bus.isJoined(); }, 300ms));
    EXPECT_EQ(program.log.lines().size(), 1U) << "said once, however often it is tried";

    sessionBus.startAgain();
    Program listener;
    listener.listenTo(finishName);
    listener.join();
    EXPECT_TRUE(waitUntil([&] { return !listener.received.empty(); }));
    Program second;
    second.join();
    EXPECT_TRUE(waitUntil([&] {
        const QDBusConnection caller = second.bus.connection();
        QDBusMessage ask = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                          "org.freedesktop.DBus", "NameHasOwner");
        ask << QStringLiteral("com.quessartolvinger.Corvane");
        return caller.call(ask).arguments().value(0).toBool();
    }));
    host().send(notification(reloadName));
    EXPECT_TRUE(waitUntil([&] { return program.received.size() == 1; }));
}

TEST_F(BusTest, SendsWhatCouldNotBeSentAtTheLastMoment) {
    Program program;
    program.join();
    sessionBus.end();
    program.center.post(finishName);
    ASSERT_TRUE(waitUntil([&] { return !program.bus.isJoined(); }));
    sessionBus.startAgain();
    Program listener;
    listener.listenTo(finishName);
    listener.join();
    EXPECT_TRUE(program.center.flush(1s));
    EXPECT_TRUE(waitUntil([&] { return !listener.received.empty(); }));
}

TEST_F(BusTest, LogsWhatIsLostWhenThereIsNoBusToTheEnd) {
    sessionBus.end();
    InMemoryLog log;
    {
        SessionBus bus(log);
        DbusNotificationCenter center(bus, log);
        center.post(finishName);
        EXPECT_FALSE(center.flush(100ms));
    }
    EXPECT_TRUE(log.contains(std::string("the notification ") + finishName + " could not be sent"));
}

TEST_F(BusTest, AnswersTheDesktopsApplicationInterface) {
    Program program;
    program.join();
    ASSERT_EQ(program.service.start(), ApplicationService::Start::OwnsName);
    const QDBusConnection caller = host();
    EXPECT_EQ(call(caller, applicationCall("Activate") << QVariantMap()).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(program.activations, 1);
    EXPECT_EQ(call(caller, applicationCall("Open") << QStringList{"file:///x"} << QVariantMap()).type(),
              QDBusMessage::ReplyMessage);
    EXPECT_EQ(program.activations, 2);
    const QDBusMessage refusal = call(caller, applicationCall("ActivateAction")
                                                  << QStringLiteral("x") << QVariantList() << QVariantMap());
    EXPECT_EQ(refusal.errorName(), "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_EQ(program.quits, 0);
    EXPECT_EQ(call(caller, applicationCall("ActivateAction")
                               << QStringLiteral("quit") << QVariantList() << QVariantMap())
                  .type(),
              QDBusMessage::ReplyMessage);
    EXPECT_EQ(program.quits, 1);
    EXPECT_EQ(program.activations, 2);
}

TEST_F(BusTest, TakesThePermissionToComeToTheFront) {
    constexpr const char* variable = "XDG_ACTIVATION_TOKEN";
    Program program;
    program.join();
    ASSERT_EQ(program.service.start(), ApplicationService::Start::OwnsName);
    call(host(), applicationCall("Activate") << QVariantMap{{QStringLiteral("activation-token"), "token 1"}});
    EXPECT_EQ(qEnvironmentVariable(variable), "token 1");
    call(host(), applicationCall("Activate") << QVariantMap());
    EXPECT_EQ(qEnvironmentVariable(variable), "token 1") << "none is no other one";
    qunsetenv(variable);
}

TEST_F(BusTest, DescribesItselfAsItsInterfaceFileSays) {
    Program program;
    program.join();
    ASSERT_EQ(program.service.start(), ApplicationService::Start::OwnsName);
    const QString xml = call(host(), QDBusMessage::createMethodCall(
                                         "com.quessartolvinger.Corvane", "/com/quessartolvinger/Corvane",
                                         "org.freedesktop.DBus.Introspectable", "Introspect"))
                            .arguments()
                            .value(0)
                            .toString();
    EXPECT_TRUE(xml.contains("<interface name=\"org.freedesktop.Application\">"));
    for (const char* argument : {"type=\"a{sv}\"", "type=\"as\"", "type=\"av\"", "\"ActivateAction\""})
        EXPECT_TRUE(xml.contains(argument)) << argument << " in " << xml.toStdString();
}

TEST_F(BusTest, LetsTheNameGoBeforeTheProgramEnds) {
    Program first;
    first.join();
    ASSERT_EQ(first.service.start(), ApplicationService::Start::OwnsName);
    first.service.stop();
    Program second;
    second.join();
    EXPECT_EQ(second.service.start(), ApplicationService::Start::OwnsName);
}

}  // namespace
}  // namespace corvane
