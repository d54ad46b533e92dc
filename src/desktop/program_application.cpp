#include "desktop/program_application.h"

#include <QEvent>
#include <clocale>

#include "desktop/build_bundle.h"
#include "desktop/named_images.h"

namespace corvane {

ProgramApplication::ProgramApplication(int& argc, char** argv) : QApplication(argc, argv) {
    // The toolkit has taken over the user's locale, and with it a decimal comma for whatever reads or writes
    // numbers through the C library.
    std::setlocale(LC_NUMERIC, "C");
    setApplicationName(QString::fromLatin1(programName));
    setApplicationDisplayName(QString::fromLatin1(programName));
    setDesktopFileName(QStringLiteral("com.quessartolvinger.Corvane"));
    setWindowIcon(programIcon());
    setQuitOnLastWindowClosed(false);
}

bool ProgramApplication::event(QEvent* event) {
    if (event->type() != QEvent::Quit || !quitHandler_)
        return QApplication::event(event);
    event->accept();
    quitHandler_();
    return true;
}

}  // namespace corvane
