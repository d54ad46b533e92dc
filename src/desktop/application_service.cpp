#include "desktop/application_service.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <utility>

#include "desktop/application_adaptor.h"
#include "desktop/bus_messages.h"

namespace corvane {

namespace {

constexpr int answerTimeout = 5000;  // milliseconds
constexpr int releaseTimeout = 100;
constexpr int claimAttempts = 5;

// Of the bus's RequestName.
constexpr uint doNotQueue = 4;
constexpr uint primaryOwner = 1;
constexpr uint alreadyOwner = 4;

QString name() {
    return QStringLiteral("com.quessartolvinger.Corvane");
}

QString objectPath() {
    return QStringLiteral("/com/quessartolvinger/Corvane");
}

QDBusMessage requestName() {
    QDBusMessage call = busCall("RequestName");
    call << name() << doNotQueue;
    return call;
}

/// Hands on the permission to come to the front that this process was started with.
QVariantMap platformData() {
    QVariantMap data;
    const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
    if (!token.isEmpty())
        data.insert(QStringLiteral("activation-token"), token);
    return data;
}

bool grantsName(const QDBusMessage& reply) {
    const uint answer = reply.arguments().value(0).toUInt();
    return answer == primaryOwner || answer == alreadyOwner;
}

}  // namespace

ApplicationService::ApplicationService(SessionBus& bus, Log& log, ApplicationCommands commands)
    : bus_(bus), log_(log) {
    new ApplicationAdaptor(this, *this, std::move(commands));
}

ApplicationService::Start ApplicationService::start() {
    connect(&bus_, &SessionBus::joined, this, &ApplicationService::claimNameAgain);
    // The owner may end between the refusal and the activation; then the name is free.
    for (int attempt = 0; attempt < claimAttempts && bus_.isJoined(); ++attempt) {
        exportObject();
        switch (claimName()) {
            case Claim::Owned:
                return Start::OwnsName;
            case Claim::Taken:
                if (activateOwner())
                    return Start::ActivatedOther;
                break;
            case Claim::Failed:
                break;
        }
    }
    return Start::WithoutBus;
}

void ApplicationService::stop() {
    disconnect(&bus_, nullptr, this, nullptr);
    if (!bus_.isJoined())
        return;
    QDBusMessage release = busCall("ReleaseName");
    release << name();
    bus_.connection().call(release, QDBus::Block, releaseTimeout);
}

void ApplicationService::exportObject() {
    QDBusConnection connection = bus_.connection();
    connection.registerObject(objectPath(), this, QDBusConnection::ExportAdaptors);
}

ApplicationService::Claim ApplicationService::claimName() {
    const QDBusMessage reply = bus_.connection().call(requestName(), QDBus::Block, answerTimeout);
    if (reply.type() != QDBusMessage::ReplyMessage)
        return Claim::Failed;
    return grantsName(reply) ? Claim::Owned : Claim::Taken;
}

bool ApplicationService::activateOwner() {
    QDBusMessage call = QDBusMessage::createMethodCall(
        name(), objectPath(), QStringLiteral("org.freedesktop.Application"), QStringLiteral("Activate"));
    call << platformData();
    call.setAutoStartService(false);
    const QDBusMessage reply = bus_.connection().call(call, QDBus::Block, answerTimeout);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return true;
    const QString error = reply.errorName();
    const bool isGone = error == QDBusError::errorString(QDBusError::ServiceUnknown) ||
                        error == QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner") ||
                        !bus_.isJoined();
    if (isGone)
        return false;
    log_.log("the program runs already, but does not answer");
    return true;
}

void ApplicationService::claimNameAgain() {
    exportObject();
    auto* watcher = new QDBusPendingCallWatcher(bus_.connection().asyncCall(requestName()), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* finished) {
        if (!finished->isError() && !grantsName(finished->reply()))
            log_.log("another process has the program's name on the session bus");
        finished->deleteLater();
    });
}

}  // namespace corvane
