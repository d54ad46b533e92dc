#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <functional>
#include <optional>
#include <string>

namespace corvane::import_command {

/// One request for an import on the session bus, from starting the program to the end of the import. The end
/// carries no sender and no name: the first one announced after the request counts. Main thread only.
class ImportRequest : public QObject {
    Q_OBJECT

  public:
    /// Called once, at the end: absent when the end of an import was announced, otherwise what went wrong, as
    /// one line.
    using EndHandler = std::function<void(std::optional<std::string> problem)>;

    ImportRequest(QDBusConnection bus, bool isLite, EndHandler atEnd);

    /// Subscribes to the end, has the program started if nobody owns its name, and asks.
    void start();

  private:
    enum class Phase { NotAsked, Asked, Over };

    Q_SLOT void finishAnnounced();
    Q_SLOT void programOwnerChanged(const QString& name, const QString& oldOwner, const QString& newOwner);
    Q_SLOT void busLost();

    bool subscribe();
    void lookForProgram();
    void startProgram();
    void ask();
    void end(std::optional<std::string> problem);

    QDBusConnection bus_;
    bool isLite_;
    EndHandler atEnd_;
    Phase phase_ = Phase::NotAsked;
};

}  // namespace corvane::import_command
