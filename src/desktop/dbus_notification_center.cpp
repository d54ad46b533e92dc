#include "desktop/dbus_notification_center.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <string_view>
#include <utility>

#include "desktop/bus_messages.h"
#include "desktop/qt_text.h"
#include "platform/text_format.h"

namespace corvane {

namespace {

QString path() {
    return QStringLiteral("/com/quessartolvinger/DistributedNotificationCenter");
}

QString interfaceName() {
    return QStringLiteral("com.quessartolvinger.DistributedNotificationCenter");
}

/// For the log: a number or truth value with its type, of anything else the type.
ForeignObject foreignObject(const QDBusMessage& message) {
    const std::string type = toUtf8(message.signature());
    const bool isScalar =
        type.size() == 1 && std::string_view("ybnqiuxtd").find(type) != std::string_view::npos;
    if (!isScalar)
        return {formatText("<%@>", {type})};
    return {formatText("<%@ %@>", {type, toUtf8(message.arguments().constFirst().toString())})};
}

DistributedNotification notificationOf(const QDBusMessage& message) {
    DistributedNotification notification{toUtf8(message.member()), std::monostate{}};
    const QVariantList arguments = message.arguments();
    if (message.signature() == QLatin1String("s"))
        notification.object = toUtf8(arguments.constFirst().toString());
    else if (!arguments.isEmpty())
        notification.object = foreignObject(message);
    return notification;
}

}  // namespace

DbusNotificationCenter::DbusNotificationCenter(SessionBus& bus, Log& log) : bus_(bus), log_(log) {
    connect(&bus_, &SessionBus::joined, this, &DbusNotificationCenter::listenAndSend);
    if (bus_.isJoined())
        listenAndSend();
}

DbusNotificationCenter::~DbusNotificationCenter() {
    for (const Unsent& notification : unsent_)
        log_.log(formatText("the notification %@ could not be sent", {notification.name}));
}

void DbusNotificationCenter::addObserver(std::string_view name, Handler handler) {
    observers_.add(name, std::move(handler));
}

void DbusNotificationCenter::post(std::string_view name) {
    unsent_.push_back({++postCount_, std::string(name)});
    if (bus_.isJoined())
        send(unsent_.back());
}

// Listens for the whole interface, so that a request counts from the moment that the program is on the bus,
// and not only once its observer is there.
void DbusNotificationCenter::listenAndSend() {
    QDBusConnection connection = bus_.connection();
    connection.connect(QString(), path(), interfaceName(), QString(), this, SLOT(receive(QDBusMessage)));
    for (const Unsent& notification : unsent_)
        send(notification);
}

// The bus handles the messages of a connection in order: its answer to the call says that it has the signal.
void DbusNotificationCenter::send(const Unsent& notification) {
    const QDBusConnection& connection = bus_.connection();
    connection.send(QDBusMessage::createSignal(path(), interfaceName(), toQString(notification.name)));
    auto* watcher = new QDBusPendingCallWatcher(connection.asyncCall(busCall("GetId")), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, number = notification.number](QDBusPendingCallWatcher* finished) {
                if (!finished->isError())
                    confirmUpTo(number);
                finished->deleteLater();
            });
}

void DbusNotificationCenter::confirmUpTo(std::uint64_t number) {
    std::erase_if(unsent_, [number](const Unsent& notification) { return notification.number <= number; });
}

bool DbusNotificationCenter::flush(std::chrono::milliseconds limit) {
    if (unsent_.empty())
        return true;
    bus_.join();
    if (!bus_.isJoined())
        return false;
    const int timeout = static_cast<int>(limit.count());
    const QDBusMessage answer = bus_.connection().call(busCall("GetId"), QDBus::Block, timeout);
    if (answer.type() != QDBusMessage::ReplyMessage)
        return false;
    confirmUpTo(postCount_);
    return true;
}

void DbusNotificationCenter::receive(const QDBusMessage& message) {
    observers_.notify(notificationOf(message));
}

}  // namespace corvane
