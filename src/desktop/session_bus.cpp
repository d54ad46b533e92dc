#include "desktop/session_bus.h"

#include <QFileInfo>
#include <algorithm>

namespace corvane {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds firstRetryDelay{100};
constexpr milliseconds longestRetryDelay{30'000};

/// Where the session's bus is; empty when nothing says so. A bus of one's own is never started.
QString busAddress() {
    QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (!address.isEmpty())
        return address;
    const QString runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!QFileInfo(runtimeFolder).isAbsolute())
        return {};
    const QString socket = runtimeFolder + QStringLiteral("/bus");
    return QFileInfo::exists(socket) ? QStringLiteral("unix:path=") + socket : QString();
}

/// Names of connections are shared by the whole process, and one whose connection is lost stays in use.
QString nextConnectionName() {
    static int count = 0;
    return QStringLiteral("corvane-%1").arg(++count);
}

/// May take as long as the bus needs to answer. Any thread.
void openConnection(const QString& name) {
    const QString address = busAddress();
    if (!address.isEmpty())
        QDBusConnection::connectToBus(address, name);
}

}  // namespace

SessionBus::SessionBus(Log& log) : log_(log), connection_(QString()), retryDelay_(firstRetryDelay) {
    joiner_.setMaxThreadCount(1);
    retryTimer_.setSingleShot(true);
    connect(&retryTimer_, &QTimer::timeout, this, &SessionBus::joinInBackground);
}

SessionBus::~SessionBus() {
    leave();
}

bool SessionBus::isJoined() const {
    return !connectionName_.isEmpty() && connection_.isConnected();
}

void SessionBus::join() {
    if (isJoined())
        return;
    joiner_.waitForDone();
    retryTimer_.stop();
    const QString name = nextConnectionName();
    openConnection(name);
    adopt(name);
}

void SessionBus::leave() {
    retryTimer_.stop();
    joiner_.waitForDone();
    forgetConnection();
}

void SessionBus::joinInBackground() {
    const QString name = nextConnectionName();
    joiner_.start([this, name] {
        openConnection(name);
        QMetaObject::invokeMethod(
            this, [this, name] { adopt(name); }, Qt::QueuedConnection);
    });
}

void SessionBus::adopt(const QString& name) {
    if (isJoined()) {
        QDBusConnection::disconnectFromBus(name);  // joined meanwhile in another way
        return;
    }
    forgetConnection();
    connection_ = QDBusConnection(name);
    connectionName_ = name;
    connection_.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                        QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                        SLOT(handleDisconnected()));
    if (!isJoined()) {
        forgetConnection();
        tryAgainLater();
        return;
    }
    retryDelay_ = firstRetryDelay;
    if (isLossLogged_)
        log_.log("joined the session bus again");
    isLossLogged_ = false;
    Q_EMIT joined();
}

void SessionBus::handleDisconnected() {
    if (connectionName_.isEmpty() || isJoined())
        return;  // the end of an earlier connection
    forgetConnection();
    tryAgainLater();
}

void SessionBus::tryAgainLater() {
    if (!isLossLogged_)
        log_.log("no session bus: host applications cannot ask for imports until it is there again");
    isLossLogged_ = true;
    retryTimer_.start(retryDelay_);
    retryDelay_ = std::min(retryDelay_ * 2, longestRetryDelay);
}

void SessionBus::forgetConnection() {
    if (connectionName_.isEmpty())
        return;
    connection_ = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(connectionName_);
    connectionName_.clear();
}

}  // namespace corvane
