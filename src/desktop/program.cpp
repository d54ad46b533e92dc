#include "desktop/program.h"

#include <QLibraryInfo>
#include <QLocale>
#include <QTimer>
#include <QTranslator>
#include <chrono>
#include <cstdlib>

#include "desktop/application_service.h"
#include "desktop/command_line.h"
#include "desktop/dbus_notification_center.h"
#include "desktop/end_deadline.h"
#include "desktop/program_application.h"
#include "desktop/qt_text.h"
#include "desktop/running_program.h"
#include "desktop/session_bus.h"
#include "desktop/unix_signals.h"
#include "platform/system/broken_pipes.h"
#include "platform/system/standard_error_log.h"

namespace corvane {

namespace {

using std::chrono::milliseconds;

/// Together less than the limit for the whole end.
constexpr milliseconds sendLimit{300};
constexpr milliseconds workLimit{250};

/// The toolkit's own few texts, such as a text field's menu.
void installToolkitTexts(QTranslator& texts) {
    if (texts.load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                   QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&texts);
}

/// The actions have the names that the menu entry gives them. Whoever asks for one does not wait for the
/// user.
ApplicationCommands busCommands(RunningProgram*& running) {
    return {.activate = [&running] { running->delegate().applicationShouldHandleReopen(); },
            .actions = {{QStringLiteral("check-for-updates"),
                         [&running] { running->menuCommands().checkForUpdates(); }},
                        {QStringLiteral("open-reports-folder"),
                         [&running] { running->menuCommands().openReportsFolder(); }},
                        {QStringLiteral("about"),
                         [&running] {
                             QTimer::singleShot(0, qApp, [&running] { running->menuCommands().showAbout(); });
                         }},
                        {QStringLiteral("quit"), [&running] { running->menuCommands().quit(); }}}};
}

}  // namespace

int runProgram(int argc, char** argv, const BuildSettings& buildSettings) {
    ignoreBrokenPipes();
    ProgramApplication toolkit(argc, argv);
    if (const QStringList unknown = ProgramApplication::arguments().mid(1); !unknown.isEmpty())
        return giveAnswer(refusalOf(toUtf8(unknown.first())));
    QTranslator toolkitTexts;
    installToolkitTexts(toolkitTexts);

    StandardErrorLog log;
    EndDeadline endDeadline(log);
    SessionBus bus(log);
    DbusNotificationCenter distributedCenter(bus, log);
    // Calls from the bus come from the event loop, and so not before there is a program.
    RunningProgram* running = nullptr;
    ApplicationService service(bus, log, busCommands(running));
    // Before the name is there: whoever sees the name may also ask the program to end.
    const UnixSignals signals([&running] { running->application().terminate(); });

    bus.join();
    const ApplicationService::Start start = service.start();
    if (start == ApplicationService::Start::ActivatedOther)
        return EXIT_SUCCESS;

    RunningProgram program(buildSettings, {log, distributedCenter, endDeadline});
    if (start == ApplicationService::Start::OwnsName)
        program.removeLeftOvers();
    running = &program;
    const auto terminate = [&program] { program.application().terminate(); };
    toolkit.setQuitHandler(terminate);

    program.delegate().applicationDidFinishLaunching();
    const int status = ProgramApplication::exec();

    // What was announced goes out first, and then the name, so that whoever asks from now on starts the
    // program anew.
    distributedCenter.flush(sendLimit);
    service.stop();
    bus.leave();
    if (!program.stopWork(workLimit))
        std::_Exit(status);
    return status;
}

}  // namespace corvane
