// A process that imports like the program, without its windows: real files, real HTTP, real threads. The
// tests measure it from outside.
//   import_driver HOME SERVICE_HOST CA_FILE IDLE_LIMIT_MS RUNS
// Each run ends with a line on standard output: "run <n>: <answers> answers, <files> files, <descriptors>
// descriptors, <memory> KiB". The log goes to standard error.

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

#include "platform/system/curl_http_client.h"
#include "platform/system/standard_error_log.h"
#include "platform/system/system_clock.h"
#include "platform/system/thread_pool_queue.h"
#include "reliability/engine_on_disk.h"

namespace corvane::test {
namespace {

class SilentAlerts final : public Alerts {
  public:
    AlertAnswer runModal(const Alert& /*alert*/) override { return {}; }
    void beep() override {}
};

std::size_t openDescriptors() {
    return namesIn("/proc/self/fd").size() - 1;  // without the one that reads the folder
}

long residentKibibytes() {
    std::ifstream statm("/proc/self/statm");
    long total = 0;
    long resident = 0;
    statm >> total >> resident;
    return resident * 4;
}

/// The program's objects; only the main queue's delays are left out.
class Import {
  public:
    Import(const std::filesystem::path& home, const std::string& serviceHost, CurlHttpClientOptions options)
        : files_(home / "data"),
          store_(EngineOnDisk::settingsFile(home), log_, clock_),
          httpClient_(std::move(options)),
          connection_{serviceHost, httpClient_, mainQueue_, backgroundQueue_, log_} {}

    void run(int number) {
        // Each run asks for the same again.
        const auto cache = settings_.reportsDownloadedCache();
        int answers = 0;
        std::size_t reports = 0;
        bool isFinished = false;
        manager_.updateDailyReports([&](const UpdateProgress& progress) {
            ++answers;
            reports += progress.path ? 1U : 0U;
            isFinished = isFinished || progress.isFinished;
        });
        while (!isFinished) {
            mainQueue_.advance(std::chrono::seconds(10));
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        settings_.setReportsDownloadedCache(cache);
        std::printf("run %d: %d answers, %zu files, %zu descriptors, %ld KiB\n", number, answers, reports,
                    openDescriptors(), residentKibibytes());
        std::fflush(stdout);
    }

  private:
    StandardErrorLog log_;
    SystemClock clock_;
    PosixFileManager files_;
    PropertyListFileStore store_;
    SettingsManger settings_{store_};
    ManualMainQueue mainQueue_;
    SilentAlerts alerts_;
    SourceLanguageStrings strings_;
    CurlHttpClient httpClient_;
    ThreadPoolQueue backgroundQueue_;
    ReportServiceConnection connection_;
    ReportUpdateManager manager_{{settings_, connection_, files_, clock_, alerts_, strings_}};
};

int importRuns(char** arguments) {
    CurlHttpClientOptions options;
    options.caFile = arguments[3];
    options.idleLimit = std::chrono::milliseconds(std::atoi(arguments[4]));
    options.connectLimit = std::min(options.connectLimit, options.idleLimit);
    Import import(arguments[1], arguments[2], std::move(options));
    const int runs = std::atoi(arguments[5]);
    for (int number = 1; number <= runs; ++number)
        import.run(number);
    return EXIT_SUCCESS;
}

}  // namespace
}  // namespace corvane::test

int main(int argc, char** argv) {
    constexpr int argumentCount = 6;
    return argc == argumentCount ? corvane::test::importRuns(argv) : EXIT_FAILURE;
}
