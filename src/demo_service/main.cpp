#include <fmt/format.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "demo_service/command_line.h"
#include "demo_service/demo_service.h"
#include "demo_service/file_descriptor.h"
#include "demo_service/made_up_report_source.h"
#include "demo_service/scenarios.h"

namespace {

using namespace corvane::demo;

constexpr int kWrongUsage = 2;

/// Blocked before any thread starts, so that the descriptor below gets them.
FileDescriptor endSignals() {
    sigset_t signals{};
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return FileDescriptor(::signalfd(-1, &signals, SFD_CLOEXEC));
}

/// Becomes readable when the parent ends; a signal on the parent's death would already come when only the
/// thread ends that started us.
FileDescriptor parentOf(const CommandLine& line) {
    if (!line.diesWithParent) {
        return {};
    }
    // The C library's own pidfd_open() cannot be called from C++ in glibc 2.36.
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, ::getppid(), 0)));
}

void waitForTheEnd(const FileDescriptor& signals, const FileDescriptor& parent) {
    std::array<pollfd, 2> polled{pollfd{signals.get(), POLLIN, 0}, pollfd{parent.get(), POLLIN, 0}};
    while (polled[0].revents == 0 && polled[1].revents == 0) {
        static_cast<void>(::poll(polled.data(), polled.size(), -1));
    }
}

std::chrono::year_month_day localToday() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    return {std::chrono::year(local.tm_year + 1900),
            std::chrono::month(static_cast<unsigned>(local.tm_mon) + 1),
            std::chrono::day(static_cast<unsigned>(local.tm_mday))};
}

std::optional<std::string> contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

/// Absent when the file is missing or unreadable.
std::optional<std::vector<DemoAccount>> accountsOf(const CommandLine& line) {
    if (line.accountsFile.empty()) {
        return std::vector<DemoAccount>{};
    }
    const auto text = contentOf(line.accountsFile);
    return text ? accountsFromText(*text) : std::nullopt;
}

DemoServiceOptions optionsOf(const CommandLine& line, std::vector<DemoAccount> accounts) {
    DemoServiceOptions options{.tls = line.tls,
                               .accounts = std::move(accounts),
                               .latency = line.latency,
                               .keepsRequests = false,
                               .port = line.port,
                               .updatePort = line.updatePort,
                               .hostName = line.hostName};
    if (line.reportSize > 0) {
        options.source = std::make_shared<MadeUpReportSource>(line.reportSize);
    }
    if (!line.feedVersion.empty()) {
        options.updateFeed = updateFeedOffering(line.feedVersion, line.feedNotes, line.feedLink);
    }
    return options;
}

void startScenario(const CommandLine& line, DemoService& service) {
    const auto rule =
        scenarioNamed(line.scenario, {.redirectTarget = service.redirectTargetHost(), .today = localToday});
    if (rule) {
        service.setBehaviour(onEvery(line.every, *rule));
    }
}

void printHosts(const DemoService& service) {
    fmt::print("REPORT_SERVICE_HOST={}\nUPDATE_HOST={}\nREDIRECT_TARGET_HOST={}\nREADY=1\n",
               service.reportServiceHost(), service.updateHost(), service.redirectTargetHost());
    std::fflush(stdout);
}

int fail(int status, std::string_view problem) {
    fmt::print(stderr, "corvane-demo-service: {}\n", problem);
    return status;
}

int serve(const CommandLine& line) {
    const FileDescriptor signals = endSignals();
    const FileDescriptor parent = parentOf(line);
    if (line.diesWithParent && !parent.isOpen()) {
        return fail(1, "cannot watch the parent process");
    }
    auto accounts = accountsOf(line);
    if (!accounts) {
        return fail(1, "cannot read the accounts in " + line.accountsFile);
    }
    std::string problem;
    const auto service = DemoService::start(optionsOf(line, std::move(*accounts)), problem);
    if (!service) {
        return fail(1, problem);
    }
    if (!line.caFile.empty() && !service->writeCaFile(line.caFile)) {
        return fail(1, "cannot write " + line.caFile);
    }
    startScenario(line, *service);
    printHosts(*service);
    waitForTheEnd(signals, parent);
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const std::vector<std::string_view> given(arguments + 1, arguments + argumentCount);
    std::string problem;
    const auto line = parseCommandLine(given, problem);
    if (!line) {
        return fail(kWrongUsage, problem + "\nTry --help.");
    }
    if (line->asksForHelp) {
        fmt::print("{}", helpText());
        return 0;
    }
    return serve(*line);
}
