#include "import_command/import_command.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <optional>

#include "import_command/folder_progress.h"
#include "import_command/import_request.h"
#include "import_command/messages.h"
#include "import_command/report_folder.h"

namespace corvane::import_command {
namespace {

ExitStatus fail(ExitStatus status, std::string_view problem) {
    std::fputs(problemLine(problem).c_str(), stderr);
    return status;
}

/// Ends the event loop when the time is over; a timer of the event loop holds no more than 24 days.
class Deadline {
  public:
    explicit Deadline(std::chrono::seconds timeout) : end_(std::chrono::steady_clock::now() + timeout) {
        timer_.setSingleShot(true);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { waitOn(); });
        waitOn();
    }

  private:
    void waitOn() {
        using std::chrono::milliseconds;
        const auto left = std::chrono::ceil<milliseconds>(end_ - std::chrono::steady_clock::now());
        if (left <= milliseconds(0))
            QCoreApplication::exit(TimedOut);
        else
            timer_.start(std::min<milliseconds>(left, std::chrono::hours(24)));
    }

    std::chrono::steady_clock::time_point end_;
    QTimer timer_;
};

}  // namespace

ExitStatus runImport(const Arguments& arguments, Output& output) {
    const auto folder = reportFolder();
    if (!folder)
        return fail(CouldNotAsk, "this user has no home folder");
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return fail(CouldNotAsk, "cannot reach the session bus: " + bus.lastError().message().toStdString());

    const FolderState before = stateOf(*folder);
    std::optional<FolderProgress> progress;
    if (output.isTerminal()) {
        output.showProgress(0);
        progress.emplace(*folder, before, [&output](std::size_t reports) { output.showProgress(reports); });
    }

    std::optional<std::string> problem;
    ImportRequest request(bus, arguments.isLite, [&problem](std::optional<std::string> endedWith) {
        problem = std::move(endedWith);
        QCoreApplication::exit(problem ? CouldNotAsk : Done);
    });
    const Deadline deadline(arguments.timeout);
    QTimer::singleShot(0, &request, &ImportRequest::start);

    const int status = QCoreApplication::exec();
    output.clearProgress();
    if (status == TimedOut)
        return fail(TimedOut, timeoutProblem(arguments.timeout));
    if (problem)
        return fail(CouldNotAsk, *problem);
    output.writeReports(*folder, changedFiles(before, stateOf(*folder)));
    return Done;
}

}  // namespace corvane::import_command
