// A host application's half of an import, with QtDBus: listen, start the program, ask, wait for the end, take
// the new files. No header of Corvane is needed: the bus and the folder are the whole contract.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDateTime>
#include <QDir>
#include <QStandardPaths>
#include <QTextStream>

namespace {

const QString programName = QStringLiteral("com.quessartolvinger.Corvane");
const QString centerPath = QStringLiteral("/com/quessartolvinger/DistributedNotificationCenter");
const QString centerInterface = QStringLiteral("com.quessartolvinger.DistributedNotificationCenter");
const QString busName = QStringLiteral("org.freedesktop.DBus");
const QString busPath = QStringLiteral("/org/freedesktop/DBus");
const QString reportFolder = QStringLiteral("/QX4ZT7M2P9.group.quessartolvinger.brindlecount/ToImport");

class Host : public QObject {
    Q_OBJECT

  public:
    void requestImport() {
        QDBusConnection bus = QDBusConnection::sessionBus();
        // Whoever listens only after asking can miss a quick end.
        const bool listens =
            bus.connect(QString(), centerPath, centerInterface,
                        QStringLiteral("reportUpdateViewControllerDidFinishDistributedNotification"), this,
                        SLOT(takeReports()));
        if (!listens)
            return fail(bus.lastError().message());

        QDBusMessage start =
            QDBusMessage::createMethodCall(busName, busPath, busName, QStringLiteral("StartServiceByName"));
        start << programName << 0U;
        auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(start), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
            watcher->deleteLater();
            const QDBusPendingReply<unsigned> reply = *watcher;
            // The bus answers once the program owns its name, and by then it listens.
            if (reply.isError())
                fail(reply.error().message());
            else
                ask();
        });
    }

  private Q_SLOTS:
    void takeReports() {
        const QDir folder(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                          reportFolder);
        const auto files = folder.entryInfoList({QStringLiteral("*.txt")}, QDir::Files);
        for (const QFileInfo& file : files) {
            if (file.lastModified() >= askedAt_)
                QTextStream(stdout) << file.filePath() << '\n';
        }
        QCoreApplication::exit(0);
    }

  private:
    void ask() {
        askedAt_ = QDateTime::currentDateTime();
        QDBusMessage request = QDBusMessage::createSignal(centerPath, centerInterface,
                                                          QStringLiteral("kNotificationCorvaneReloadData"));
        request << QStringLiteral(R"({"isLite": false})");
        if (!QDBusConnection::sessionBus().send(request))
            fail(QStringLiteral("the session bus takes no message"));
    }

    static void fail(const QString& problem) {
        QTextStream(stderr) << problem << '\n';
        QCoreApplication::exit(1);
    }

    QDateTime askedAt_;
};

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    Host host;
    QMetaObject::invokeMethod(&host, &Host::requestImport, Qt::QueuedConnection);
    return QCoreApplication::exec();
}

#include "main.moc"
