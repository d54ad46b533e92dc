#include "import_command/import_request.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <limits>
#include <utility>

#include "app/notification_names.h"
#include "import_command/messages.h"

namespace corvane::import_command {
namespace {

const QString programName = QStringLiteral("com.quessartolvinger.Corvane");
const QString notificationPath = QStringLiteral("/com/quessartolvinger/DistributedNotificationCenter");
const QString notificationInterface = QStringLiteral("com.quessartolvinger.DistributedNotificationCenter");
const QString busName = QStringLiteral("org.freedesktop.DBus");
const QString busPath = QStringLiteral("/org/freedesktop/DBus");

// How long to wait for anything is the business of the command's own time-out.
constexpr int noTimeout = std::numeric_limits<int>::max();

QDBusMessage callOfBus(const QString& method, const QVariantList& arguments) {
    QDBusMessage call = QDBusMessage::createMethodCall(busName, busPath, busName, method);
    call.setArguments(arguments);
    return call;
}

}  // namespace

ImportRequest::ImportRequest(QDBusConnection bus, bool isLite, EndHandler atEnd)
    : bus_(std::move(bus)), isLite_(isLite), atEnd_(std::move(atEnd)) {}

void ImportRequest::start() {
    if (subscribe())
        lookForProgram();
    else
        end("cannot listen on the session bus: " + bus_.lastError().message().toStdString());
}

bool ImportRequest::subscribe() {
    const QString anySender;
    return bus_.connect(anySender, notificationPath, notificationInterface,
                        QString::fromLatin1(reportUpdateViewControllerDidFinishDistributedNotification), this,
                        SLOT(finishAnnounced())) &&
           bus_.connect(busName, busPath, busName, QStringLiteral("NameOwnerChanged"), {programName},
                        QStringLiteral("sss"), this,
                        SLOT(programOwnerChanged(const QString&, const QString&, const QString&))) &&
           bus_.connect(anySender, QStringLiteral("/org/freedesktop/DBus/Local"),
                        QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                        SLOT(busLost()));
}

// Whoever owns the name listens already. One that has no service file can only be found this way.
void ImportRequest::lookForProgram() {
    auto* watcher = new QDBusPendingCallWatcher(
        bus_.asyncCall(callOfBus(QStringLiteral("NameHasOwner"), {programName}), noTimeout), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* call) {
        call->deleteLater();
        const QDBusPendingReply<bool> reply = *call;
        if (reply.isError())
            end("cannot ask the session bus: " + reply.error().message().toStdString());
        else if (reply.value())
            ask();
        else
            startProgram();
    });
}

void ImportRequest::startProgram() {
    constexpr unsigned noFlags = 0;
    auto* watcher = new QDBusPendingCallWatcher(
        bus_.asyncCall(callOfBus(QStringLiteral("StartServiceByName"), {programName, noFlags}), noTimeout),
        this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* call) {
        call->deleteLater();
        const QDBusPendingReply<unsigned> reply = *call;
        if (reply.isError())
            end("Corvane cannot be started: " + reply.error().message().toStdString());
        else
            ask();
    });
}

void ImportRequest::ask() {
    if (phase_ != Phase::NotAsked)
        return;
    QDBusMessage request = QDBusMessage::createSignal(notificationPath, notificationInterface,
                                                      QString::fromLatin1(kNotificationCorvaneReloadData));
    request << QString::fromStdString(optionsText(isLite_));
    phase_ = Phase::Asked;
    if (!bus_.send(request))
        end("cannot ask on the session bus: " + bus_.lastError().message().toStdString());
}

void ImportRequest::finishAnnounced() {
    if (phase_ == Phase::Asked)
        end(std::nullopt);
}

void ImportRequest::programOwnerChanged(const QString& /*name*/, const QString& /*oldOwner*/,
                                        const QString& newOwner) {
    if (phase_ == Phase::Asked && newOwner.isEmpty())
        end("Corvane ended before the import did");
}

void ImportRequest::busLost() {
    end("the session bus is gone");
}

void ImportRequest::end(std::optional<std::string> problem) {
    if (phase_ == Phase::Over)
        return;
    phase_ = Phase::Over;
    atEnd_(std::move(problem));
}

}  // namespace corvane::import_command
