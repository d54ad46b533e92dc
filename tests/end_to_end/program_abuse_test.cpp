// The real program on a bus that nobody keeps in order: requests of every wrong kind, far too many of them,
// and many starts at once.

#include <gmock/gmock.h>

#include <QByteArray>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>

#include "end_to_end/end_to_end_environment.h"
#include "reliability/rounds.h"

namespace corvane::test {
namespace {

using std::chrono::steady_clock;
using testing::HasSubstr;

class ProgramAbuseTest : public EndToEndTest {
  protected:
    /// An account without a password is left out: each run is over as soon as it starts, and as it was no
    /// success, the program stays.
    ProgramAbuseTest() {
        writeSettings({{"settingsKeyItunesAccounts",
                        archivedAccountList({std::make_shared<ITunesAccount>("4711", "Demo")})}});
    }

    /// Exactly that many ends of runs were announced, and the program does its work.
    void expectEnds(int count) {
        EXPECT_TRUE(host_->waitForFinishes(count, std::chrono::minutes(5))) << lastLines();
        EXPECT_TRUE(program_->isRunning());
        EXPECT_TRUE(host_->activate());
        // A run starts a second after its request: an end too many would have come before this one.
        host_->requestImport(R"({"isLite": true})");
        EXPECT_TRUE(host_->waitForFinishes(count + 1, patience)) << lastLines();
        EXPECT_FALSE(host_->waitForFinishes(count + 2, std::chrono::milliseconds(200)));
        EXPECT_THAT(log(), HasSubstr("updateDailyReports Lite:1"));
    }

    std::string lastLines() const {
        constexpr std::size_t enough = 4'000;
        const std::string lines = log();
        return lines.substr(lines.size() - std::min(lines.size(), enough));
    }
};

TEST_F(ProgramAbuseTest, BearsWhateverIsSentToItAndEndsEachRunOnce) {
    startProgram();
    const QString megabyte(1 << 20, QLatin1Char('x'));
    const QString deep = QString(100'000, QLatin1Char('[')) + QString(100'000, QLatin1Char(']'));
    QVariantMap map{{QStringLiteral("isLite"), true}};
    for (int level = 0; level < 20; ++level)
        map = {{QStringLiteral("deeper"), map}};
    const std::vector<QVariantList> requests{
        {42},
        {1.5},
        {true},
        {QByteArray(1 << 20, '\0')},
        {QStringList{QStringLiteral("{}")}},
        {QStringList(20'000, QStringLiteral("text"))},
        {map},
        {QString()},
        {megabyte},
        {QString(QStringLiteral("{\"isLite\":") + deep + QLatin1Char('}'))},
        {QString(QStringLiteral("{\"isLite\":\"") + megabyte + QStringLiteral("\"}"))},
        {QString(QStringLiteral("{\"") + megabyte + QStringLiteral("\":1}"))},
        {QStringLiteral("{\"isLite\": 1e999}")},
        {QStringLiteral("{\"isLite\": \"\x1B[2J\u2028\uFFFE\"}")},
        {QStringLiteral("%s%n%@ {\"isLite\": true}")},
        {QStringLiteral("{}"), QStringLiteral("{}")},
        {megabyte, 1, deep},
    };
    for (const QVariantList& arguments : requests)
        host_->requestImportWith(arguments);
    expectEnds(static_cast<int>(requests.size()));
    constexpr std::size_t logLimit = 100'000;
    EXPECT_LT(log().size(), logLimit) << "a text of a stranger is not copied into the log without end";
    program_->sendSignal(SIGTERM);
    EXPECT_EQ(program_->waitForExit(patience), 0);
}

TEST_F(ProgramAbuseTest, EndsEachOfManyRunsOnce) {
    startProgram();
    const int requests = rounds(50, 1000);
    const auto start = steady_clock::now();
    for (int number = 0; number < requests; ++number)
        host_->requestImport(std::nullopt);
    ASSERT_TRUE(host_->activate());  // the bus hands on in order: the program has them all by now
    const std::chrono::duration<double> sending = steady_clock::now() - start;
    expectEnds(requests);
    const std::chrono::duration<double> whole = steady_clock::now() - start;
    std::printf("%d requests, delivered within %.2f s: %d ends after %.2f s\n", requests, sending.count(),
                requests, whole.count());
}

TEST_F(ProgramAbuseTest, HasOneOwnerAfterEachRaceOfStarts) {
    constexpr std::size_t racers = 4;
    for (int round = 0; round < rounds(3, 50); ++round) {
        SCOPED_TRACE(round);
        std::vector<std::unique_ptr<ChildProcess>> programs;
        for (std::size_t number = 0; number < racers; ++number)
            programs.push_back(startedProcess("log-" + std::to_string(number)));
        const auto running = [&programs] {
            return std::ranges::count_if(programs, [](const auto& program) { return program->isRunning(); });
        };
        ASSERT_TRUE(waitUntil([&running] { return running() <= 1; }, patience));
        ASSERT_EQ(running(), 1);
        const auto owner =
            std::ranges::find_if(programs, [](const auto& program) { return program->isRunning(); });
        EXPECT_EQ(host_->programId(), static_cast<unsigned>((*owner)->id()));
        (*owner)->sendSignal(SIGTERM);
        for (const auto& program : programs)
            EXPECT_EQ(program->waitForExit(patience), 0);
        ASSERT_TRUE(host_->waitForProgram(false, patience));
    }
}

}  // namespace
}  // namespace corvane::test
