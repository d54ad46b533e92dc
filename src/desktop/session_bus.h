#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QThreadPool>
#include <QTimer>
#include <chrono>

#include "platform/log.h"

namespace corvane {

/// The connection to the session's message bus. A bus that is not there, or goes away, is logged once, and
/// joined as soon as it is there again: looked for at growing intervals, off the main thread. While
/// connected nothing is polled. Main thread only.
class SessionBus final : public QObject {
    Q_OBJECT

  public:
    /// The log must outlive the bus.
    explicit SessionBus(Log& log);
    ~SessionBus() override;

    /// Tries to join at once, blocking; without success goes on trying later. Does nothing when joined.
    void join();
    bool isJoined() const;

    /// The present connection; of use only while joined.
    const QDBusConnection& connection() const { return connection_; }

    /// Leaves the bus, and does not join again by itself. Says nothing to anybody.
    void leave();

  Q_SIGNALS:
    /// After each joining, the first included. Receivers are told in the order in which they were connected.
    void joined();

  private:
    Q_SLOT void handleDisconnected();

    void joinInBackground();
    void adopt(const QString& name);
    void tryAgainLater();
    void forgetConnection();

    Log& log_;
    QDBusConnection connection_;
    QString connectionName_;  ///< empty without a connection
    bool isLossLogged_ = false;
    QTimer retryTimer_;
    std::chrono::milliseconds retryDelay_;
    QThreadPool joiner_;
};

}  // namespace corvane
