// An import against a service that misbehaves: it ends in bounded time and memory, the next date goes on, and
// nobody but the service hears of the password.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <ostream>
#include <sstream>

#include "core/gzip_codec.h"
#include "demo_service/demo_service.h"
#include "platform/memory/manual_background_queue.h"
#include "platform/memory/scripted_http_client.h"
#include "platform/system/curl_http_client.h"
#include "reliability/engine_on_disk.h"
#include "reliability/rounds.h"
#include "support/engine_environment.h"
#include "support/sanitizers.h"
#include "support/temporary_folder.h"

namespace corvane::test {
namespace {

using std::chrono::milliseconds;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr const char* password = "S3cret-w0rd";
constexpr std::size_t missingDays = 3;
/// The longest silence: a short one, in the full rounds that of the program.
milliseconds idleLimit() {
    const milliseconds ofTheProgram = CurlHttpClientOptions().idleLimit;
    return milliseconds(rounds(1'500, static_cast<int>(ofTheProgram.count())));
}

constexpr long memoryFactor = isSanitized ? 12 : 1;
constexpr long kibibytesOfMebibyte = 1024;
constexpr long ordinaryMemory = 150 * kibibytesOfMebibyte * memoryFactor;
constexpr long bombMemory = 600 * kibibytesOfMebibyte * memoryFactor;

struct Outcome {
    int status = -1;
    long peakKibibytes = 0;
    std::chrono::steady_clock::duration time{};
    std::string output;
    std::string log;
};

void printMeasured(const char* name, const Outcome& outcome) {
    std::printf("%s: %ld KiB, %lld ms\n", name, outcome.peakKibibytes,
                static_cast<long long>(std::chrono::duration_cast<milliseconds>(outcome.time).count()));
}

class HostileServiceTest : public testing::Test {
  protected:
    void startService(demo::TlsVariant tls = demo::TlsVariant::Trusted) {
        std::string problem;
        demo::DemoServiceOptions options;
        options.tls = tls;
        service_ = demo::DemoService::start(std::move(options), problem);
        ASSERT_TRUE(service_) << problem;
        ASSERT_TRUE(service_->writeCaFile(home_.path() / "ca.pem"));
    }

    /// A home whose accounts miss the last days; the days the service is asked for, ascending.
    void makeHome(int accounts = 1) {
        ManualBackgroundQueue queue;
        ScriptedHttpClient http(answerWithItsReport);
        EngineOnDisk engine({home_.path(), http, queue});
        engine.clock.set(std::chrono::system_clock::now());
        ITunesAccountList list;
        for (int number = 1; number <= accounts; ++number) {
            list.push_back(std::make_shared<ITunesAccount>(std::to_string(4710 + number), "Demo"));
            list.back()->setEmail("user@example.com");
            list.back()->setPassword(password);
        }
        engine.settings.setITunesAccounts(list);
        // Days enough, so that three are left that are not keyed by a week as well.
        engine.fillCacheExceptDays(missingDays + 1);
        const std::set<std::string> due = engine.dueKeys();
        days_.assign(due.begin(), due.end());
        days_.erase(days_.begin(), days_.end() - static_cast<std::ptrdiff_t>(missingDays));
        ReportKeys keys = *engine.settings.reportsDownloadedCache();
        for (const std::string& key : due) {
            if (std::find(days_.begin(), days_.end(), key) == days_.end())
                keys.push_back(key);
        }
        engine.settings.setReportsDownloadedCache(keys);
    }

    /// The first missing day is answered so, the others as usual.
    void answerFirstDayWith(const demo::Behaviour& behaviour) {
        service_->setBehaviour([behaviour, first = days_.front()](
                                   const demo::ReportRequest& request) -> std::optional<demo::Behaviour> {
            return dateText(request) == first ? std::optional(behaviour) : std::nullopt;
        });
    }

    static std::string dateText(const demo::ReportRequest& request) {
        std::ostringstream text;
        text << static_cast<int>(request.date.year()) << std::setfill('0') << std::setw(2)
             << static_cast<unsigned>(request.date.month()) << std::setw(2)
             << static_cast<unsigned>(request.date.day());
        return text.str();
    }

    Outcome importReports(int runs = 1, mode_t mask = 022) const {
        const auto start = std::chrono::steady_clock::now();
        const pid_t child = fork();
        if (child == 0) {
            umask(mask);
            redirect("out", STDOUT_FILENO);
            redirect("log", STDERR_FILENO);
            const std::string caFile = home_.path() / "ca.pem";
            const std::string limit = std::to_string(idleLimit().count());
            const std::string host = service_->reportServiceHost();
            const std::string count = std::to_string(runs);
            for (const char* name : {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"})
                unsetenv(name);
            // The address sanitizer keeps freed memory back, which would look like growth.
            setenv("ASAN_OPTIONS", "quarantine_size_mb=1", 0);
            execl(IMPORT_DRIVER, IMPORT_DRIVER, home_.path().c_str(), host.c_str(), caFile.c_str(),
                  limit.c_str(), count.c_str(), nullptr);
            _exit(EXIT_FAILURE);
        }
        Outcome outcome;
        rusage usage{};
        EXPECT_EQ(wait4(child, &outcome.status, 0, &usage), child);
        outcome.peakKibibytes = usage.ru_maxrss;
        outcome.time = std::chrono::steady_clock::now() - start;
        outcome.output = readFile(home_.path() / "out");
        outcome.log = readFile(home_.path() / "log");
        return outcome;
    }

    std::filesystem::path reportFolder() const { return EngineOnDisk::reportFolder(home_.path()); }

    /// The reports of all days but the first.
    void expectTheOtherDays() const {
        for (std::size_t index = 1; index < days_.size(); ++index)
            EXPECT_TRUE(std::filesystem::exists(reportFolder() / ("S_D_4711_" + days_[index] + ".txt")))
                << days_[index];
    }

    TemporaryFolder home_;
    std::unique_ptr<demo::DemoService> service_;
    std::vector<std::string> days_;

  private:
    void redirect(const char* name, int descriptor) const {
        const int file = open((home_.path() / name).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        dup2(file, descriptor);
    }
};

struct HostileCase {
    const char* name;
    demo::Behaviour behaviour;
    bool isReport = false;  ///< the answer counts as a report all the same
    long memory = ordinaryMemory;
};

std::ostream& operator<<(std::ostream& out, const HostileCase& hostile) {
    return out << hostile.name;
}

demo::Behaviour delivered(demo::Delivery delivery) {
    demo::Behaviour behaviour;
    behaviour.delivery = delivery;
    return behaviour;
}

demo::Behaviour answered(demo::Content content, int statusCode) {
    demo::Behaviour behaviour;
    behaviour.content = content;
    behaviour.statusCode = statusCode;
    return behaviour;
}

/// About a mebibyte of gzip that stands for one of 1000.
demo::Behaviour bomb() {
    static const Bytes packed = *gzippedData(Bytes(std::size_t{1} << 30));
    demo::Behaviour behaviour;
    behaviour.content = demo::Content::CustomBody;
    behaviour.body = packed;
    return behaviour;
}

class HostileAnswerTest : public HostileServiceTest, public testing::WithParamInterface<HostileCase> {};

TEST_P(HostileAnswerTest, EndsAndTheNextDateGoesOn) {
    startService();
    makeHome();
    answerFirstDayWith(GetParam().behaviour);
    const Outcome outcome = importReports();
    EXPECT_EQ(outcome.status, 0) << outcome.log;
    EXPECT_THAT(outcome.output, HasSubstr(GetParam().isReport ? " 3 files" : " 2 files")) << outcome.log;
    EXPECT_LT(outcome.peakKibibytes, GetParam().memory);
    constexpr std::chrono::seconds work{30};
    EXPECT_LT(outcome.time, idleLimit() + work);
    EXPECT_THAT(outcome.log, Not(HasSubstr(password)));
    expectTheOtherDays();
    printMeasured(GetParam().name, outcome);
}

constexpr std::uint64_t tenGigabytes = 10'000'000'000;

INSTANTIATE_TEST_SUITE_P(
    EveryKind, HostileAnswerTest,
    testing::Values(
        HostileCase{"endless headers", delivered({.kind = demo::DeliveryKind::EndlessHeaders})},
        HostileCase{"10 GB announced",
                    delivered({.kind = demo::DeliveryKind::EndlessBody, .bodySize = tenGigabytes})},
        HostileCase{"endless chunks", delivered({.kind = demo::DeliveryKind::EndlessBody})},
        HostileCase{"silence", delivered({.kind = demo::DeliveryKind::StallBeforeHeader})},
        HostileCase{"silence within the body", delivered({.kind = demo::DeliveryKind::StallInBody})},
        HostileCase{"reset", delivered({.kind = demo::DeliveryKind::ResetBeforeAnswer})},
        HostileCase{"reset within the body", delivered({.kind = demo::DeliveryKind::ResetInBody})},
        HostileCase{"closed", delivered({.kind = demo::DeliveryKind::CloseBeforeAnswer})},
        HostileCase{"cut body", delivered({.kind = demo::DeliveryKind::CutBody})},
        HostileCase{"cut chunk", delivered({.kind = demo::DeliveryKind::CutChunk})},
        HostileCase{"HTML with 200", answered(demo::Content::HtmlPage, 200)},
        HostileCase{"HTML with 500", answered(demo::Content::HtmlPage, 500)},
        HostileCase{"HTML with 502", answered(demo::Content::HtmlPage, 502)},
        HostileCase{"HTML with 429", answered(demo::Content::HtmlPage, 429)},
        HostileCase{"refusal with 500", answered(demo::Content::NoReport, 500)},
        HostileCase{"report with 500", answered(demo::Content::Report, 500), true},
        HostileCase{"report with 429", answered(demo::Content::Report, 429), true},
        HostileCase{"empty body under a report's name", answered(demo::Content::EmptyBody, 200), true},
        HostileCase{"broken gzip", answered(demo::Content::TruncatedReport, 200), true},
        HostileCase{"gzip bomb", bomb(), false, bombMemory}));

TEST_F(HostileServiceTest, OneByteASecondGoesOnAsLongAsThereAreBytes) {
    startService();
    makeHome();
    const milliseconds interval(rounds(50, 1'000));
    const auto bytes = static_cast<std::size_t>(idleLimit() / interval + 5);
    demo::Behaviour behaviour = delivered({.kind = demo::DeliveryKind::TrickleBody, .interval = interval});
    behaviour.content = demo::Content::CustomBody;
    behaviour.body = Bytes(bytes, 'x');
    answerFirstDayWith(behaviour);
    const Outcome outcome = importReports();
    EXPECT_THAT(outcome.output, HasSubstr(" 3 files")) << outcome.log;
    EXPECT_GT(outcome.time, idleLimit()) << "the whole takes longer than the longest silence";
    EXPECT_LT(outcome.peakKibibytes, ordinaryMemory);
    printMeasured("a byte at a time", outcome);
}

TEST_F(HostileServiceTest, EndlessAnswersToAllAccountsAtOnceStayBounded) {
    startService();
    makeHome(4);
    answerFirstDayWith(delivered({.kind = demo::DeliveryKind::EndlessBody}));
    const Outcome outcome = importReports();
    EXPECT_EQ(outcome.status, 0) << outcome.log;
    EXPECT_THAT(outcome.output, HasSubstr(" 8 files")) << outcome.log;
    EXPECT_LT(outcome.peakKibibytes, ordinaryMemory);
    printMeasured("four endless answers at once", outcome);
}

class UntrustedServiceTest : public HostileServiceTest,
                             public testing::WithParamInterface<demo::TlsVariant> {};

TEST_P(UntrustedServiceTest, GetsNoByteOfTheForm) {
    startService(GetParam());
    makeHome();
    const Outcome outcome = importReports();
    EXPECT_EQ(outcome.status, 0) << outcome.log;
    EXPECT_THAT(outcome.output, HasSubstr(" 0 files"));
    EXPECT_GE(service_->acceptedConnections(), missingDays);
    EXPECT_EQ(service_->receivedBytes(), 0U);
    EXPECT_THAT(outcome.log, HasSubstr("failed to get data:An SSL error has occurred"));
}

INSTANTIATE_TEST_SUITE_P(EveryKind, UntrustedServiceTest,
                         testing::Values(demo::TlsVariant::SelfSigned, demo::TlsVariant::WrongHost,
                                         demo::TlsVariant::Expired, demo::TlsVariant::Tls11));

TEST_F(HostileServiceTest, FollowsNoRedirect) {
    startService();
    const std::string otherPort = ":" + std::to_string(service_->redirectTargetPort());
    const std::string samePort = ":" + std::to_string(service_->port());
    const std::vector<std::string> targets{
        "https://localhost" + otherPort, "http://localhost" + otherPort,
        // The service goes by this name, too: whoever followed would be answered.
        "https://127.0.0.1" + samePort, "https://127.0.0.1" + otherPort, "http://127.0.0.1" + otherPort};
    for (const int status : {301, 302, 303, 307, 308}) {
        for (const std::string& target : targets) {
            SCOPED_TRACE(std::to_string(status) + " to " + target);
            makeHome();
            service_->requests().clear();
            demo::Behaviour behaviour = answered(demo::Content::HtmlPage, status);
            behaviour.location = target + "/autoingestion.tft";
            service_->setBehaviour([behaviour](const demo::ReportRequest&) { return behaviour; });
            const Outcome outcome = importReports();
            EXPECT_THAT(outcome.output, HasSubstr(" 0 files"));
            EXPECT_EQ(service_->redirectTargetConnections(), 0U);
            EXPECT_EQ(service_->requests().count(), missingDays);
            for (const demo::ReceivedRequest& request : service_->requests().requests())
                EXPECT_THAT(request.headerLines, Contains("Host: " + service_->reportServiceHost()));
        }
    }
}

TEST_F(HostileServiceTest, AHundredImportsLeaveMemoryAndDescriptorsFlat) {
    startService();
    makeHome();
    const int runs = rounds(30, 100);
    const Outcome outcome = importReports(runs);
    ASSERT_EQ(outcome.status, 0) << outcome.log;
    std::istringstream lines(outcome.output);
    std::string line;
    std::vector<std::size_t> descriptors;
    std::vector<long> memory;
    while (std::getline(lines, line)) {
        EXPECT_THAT(line, HasSubstr(" 3 files"));
        std::size_t count = 0;
        long kibibytes = 0;
        ASSERT_EQ(std::sscanf(line.c_str(), "run %*d: %*d answers, %*d files, %zu descriptors, %ld KiB",
                              &count, &kibibytes),
                  2)
            << line;
        descriptors.push_back(count);
        memory.push_back(kibibytes);
    }
    ASSERT_EQ(descriptors.size(), static_cast<std::size_t>(runs));
    // The first runs fill caches: connections, TLS sessions, what the allocator keeps.
    constexpr std::size_t settled = 10;
    EXPECT_LE(descriptors.back(), descriptors.at(settled));
    constexpr long tolerance = 2 * kibibytesOfMebibyte;
    EXPECT_LT(memory.back(), memory.at(settled) + tolerance * memoryFactor);
    std::printf("run %zu: %zu descriptors, %ld KiB; run %d: %zu descriptors, %ld KiB\n", settled + 1,
                descriptors.at(settled), memory.at(settled), runs, descriptors.back(), memory.back());
}

class SecretTest : public HostileServiceTest, public testing::WithParamInterface<mode_t> {};

TEST_P(SecretTest, StandsNowhereButInTheSettingsOfModes0600And0700) {
    startService();
    const mode_t previous = umask(GetParam());
    makeHome();
    umask(previous);
    ASSERT_EQ(importReports(1, GetParam()).status, 0);
    EXPECT_GT(service_->requests().count(), 0U);
    const auto settingsFile = EngineOnDisk::settingsFile(home_.path());
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home_.path())) {
        if (entry.is_regular_file() && entry.path() != settingsFile) {
            EXPECT_THAT(readFile(entry.path()), Not(HasSubstr(password))) << entry.path();
        }
    }
    EXPECT_THAT(readFile(settingsFile), HasSubstr(password));
    constexpr auto allBits = static_cast<std::filesystem::perms>(07777);
    const auto modeOf = [](const std::filesystem::path& path) {
        return static_cast<unsigned>(std::filesystem::status(path).permissions() & allBits);
    };
    EXPECT_EQ(modeOf(settingsFile), 0600U);
    EXPECT_EQ(modeOf(settingsFile.parent_path()), 0700U);
    EXPECT_EQ(modeOf(EngineOnDisk::containerFolder(home_.path())), 0700U);
}

INSTANTIATE_TEST_SUITE_P(EveryUmask, SecretTest, testing::Values(0, 022, 077));

}  // namespace
}  // namespace corvane::test
