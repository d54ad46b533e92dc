// Stands in for the program on the bus: owns its name, notes what it is asked for, and answers as its first
// argument says. Says "ready" and "asked" on standard output, and appends each object to $FAKE_PROGRAM_LOG.

#include <unistd.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "support/temporary_folder.h"

namespace {

const QString path = QStringLiteral("/com/quessartolvinger/DistributedNotificationCenter");
const QString interface = QStringLiteral("com.quessartolvinger.DistributedNotificationCenter");

class FakeProgram : public QObject {
    Q_OBJECT

  public:
    explicit FakeProgram(std::string behaviour) : behaviour_(std::move(behaviour)) {}

    bool start() {
        QDBusConnection bus = QDBusConnection::sessionBus();
        // Ends with its bus: nobody else ends a program that waits.
        bus.connect({}, QStringLiteral("/org/freedesktop/DBus/Local"),
                    QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                    QCoreApplication::instance(), SLOT(quit()));
        if (!bus.connect({}, path, interface, QStringLiteral("kNotificationCorvaneReloadData"), this,
                         SLOT(asked(const QDBusMessage&))))
            return false;
        if (behaviour_ == "finish-early")
            announceFinish();
        return bus.registerService(QStringLiteral("com.quessartolvinger.Corvane"));
    }

  private slots:
    void asked(const QDBusMessage& message) {
        note(message);
        if (behaviour_ == "leave")
            QCoreApplication::quit();
        if (behaviour_.starts_with("write")) {
            writeReports();
            if (behaviour_ == "write")
                announceFinish();
        }
        if (behaviour_ == "finish" || behaviour_ == "finish-early" || behaviour_ == "finish-and-leave")
            announceFinish();
        if (behaviour_ == "finish-and-leave")
            QCoreApplication::quit();
        std::cout << "asked" << std::endl;
    }

  private:
    static void note(const QDBusMessage& message) {
        std::ofstream log(std::getenv("FAKE_PROGRAM_LOG"), std::ios::app);
        for (const QVariant& argument : message.arguments())
            log << argument.toString().toStdString() << '\n';
    }

    static void writeReports() {
        const std::filesystem::path folder = std::filesystem::path(std::getenv("XDG_DATA_HOME")) /
                                             "QX4ZT7M2P9.group.quessartolvinger.brindlecount" / "ToImport";
        for (const char* name : {"S_W_1.txt", "S_D_1.txt", "red\x1B[31m.txt", ".hidden.part"})
            corvane::test::writeFile(folder / name, "report");
    }

    static void announceFinish() {
        QDBusConnection::sessionBus().send(QDBusMessage::createSignal(
            path, interface, QStringLiteral("reportUpdateViewControllerDidFinishDistributedNotification")));
    }

    std::string behaviour_;
};

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    FakeProgram program(argc > 1 ? argv[1] : "");
    if (!program.start())
        return 1;
    std::cout << "ready" << std::endl;
    return QCoreApplication::exec();
}

#include "fake_program.moc"
