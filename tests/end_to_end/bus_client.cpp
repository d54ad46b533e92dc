#include "end_to_end/bus_client.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QEventLoop>
#include <QTimer>
#include <QVariantMap>

namespace corvane::test {
namespace {

const QString programName = QStringLiteral("com.quessartolvinger.Corvane");
const QString path = QStringLiteral("/com/quessartolvinger/DistributedNotificationCenter");
const QString interfaceName = QStringLiteral("com.quessartolvinger.DistributedNotificationCenter");

QString nextConnectionName() {
    static int count = 0;
    return QStringLiteral("host-%1").arg(++count);
}

}  // namespace

BusClient::BusClient(const std::string& address)
    : connectionName_(nextConnectionName()),
      bus_(QDBusConnection::connectToBus(QString::fromStdString(address), connectionName_)) {
    bus_.connect({}, path, interfaceName,
                 QStringLiteral("reportUpdateViewControllerDidFinishDistributedNotification"), this,
                 SLOT(finished(const QDBusMessage&)));
}

BusClient::~BusClient() {
    QDBusConnection::disconnectFromBus(connectionName_);
}

bool BusClient::waitForProgram(bool isThere, std::chrono::milliseconds timeout) {
    return waitUntil([&] { return bus_.interface()->isServiceRegistered(programName).value() == isThere; },
                     timeout);
}

unsigned BusClient::programId() {
    return bus_.interface()->servicePid(programName).value();
}

void BusClient::requestImport(const std::optional<std::string>& object) {
    requestImportWith(object ? QVariantList{QString::fromStdString(*object)} : QVariantList());
}

void BusClient::requestImportWith(const QVariantList& arguments) {
    QDBusMessage message =
        QDBusMessage::createSignal(path, interfaceName, QStringLiteral("kNotificationCorvaneReloadData"));
    message.setArguments(arguments);
    bus_.send(message);
}

bool BusClient::waitForFinishes(int count, std::chrono::milliseconds timeout) {
    return waitUntil([&] { return finishes_ >= count; }, timeout);
}

bool BusClient::activate() {
    QDBusMessage call = QDBusMessage::createMethodCall(
        programName, QStringLiteral("/com/quessartolvinger/Corvane"),
        QStringLiteral("org.freedesktop.Application"), QStringLiteral("Activate"));
    call << QVariantMap();
    return bus_.call(call).type() == QDBusMessage::ReplyMessage;
}

void BusClient::finished(const QDBusMessage& message) {
    if (message.arguments().isEmpty())
        ++finishes_;
}

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout) {
    constexpr std::chrono::milliseconds betweenLooks(10);
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (condition())
            loop.quit();
    });
    look.start(betweenLooks);
    QTimer::singleShot(timeout, &loop, &QEventLoop::quit);
    if (!condition())
        loop.exec();
    return condition();
}

}  // namespace corvane::test
