#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace corvane::test {

/// A host application's side of the bus: asks for imports and hears of their ends.
class BusClient : public QObject {
    Q_OBJECT

  public:
    explicit BusClient(const std::string& address);
    ~BusClient() override;

    /// True when the program's name has an owner (or has none) in time.
    bool waitForProgram(bool isThere, std::chrono::milliseconds timeout);

    /// The process that owns the program's name; 0 when none does.
    unsigned programId();

    /// Asks with that object, or with none.
    void requestImport(const std::optional<std::string>& object);
    /// Asks with arguments of any kind and number.
    void requestImportWith(const QVariantList& arguments);

    /// True when that many ends, each without an object, have been announced in time.
    bool waitForFinishes(int count, std::chrono::milliseconds timeout);

    /// Calls `Activate` of the program; false when it does not answer as it should.
    bool activate();

  private slots:
    void finished(const QDBusMessage& message);

  private:
    const QString connectionName_;  ///< those names are shared by the whole process
    QDBusConnection bus_;
    int finishes_ = 0;
};

/// Runs the event loop until the condition holds; false when it does not in time.
bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout);

}  // namespace corvane::test
