// The command as a process, on a bus of its own, with a program that is made to answer in every way.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <pty.h>

#include <array>
#include <chrono>
#include <csignal>

#include "support/child_process.h"
#include "support/line_reader.h"
#include "support/private_session_bus.h"
#include "support/temporary_folder.h"

namespace corvane::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr std::chrono::seconds patience(20);
constexpr const char* programName = "com.quessartolvinger.Corvane";

class ImportCommandTest : public testing::Test {
  protected:
    Environment environment() const {
        Environment result = inheritedEnvironment();
        result["DBUS_SESSION_BUS_ADDRESS"] = bus_ ? bus_->address() : "unix:path=/nowhere/bus";
        result["XDG_DATA_HOME"] = dataHome().native();
        result["FAKE_PROGRAM_LOG"] = logFile().native();
        result.erase("LC_ALL");
        return result;
    }

    void SetUp() override {
        Environment ofBus = environment();
        ofBus.erase("DBUS_SESSION_BUS_ADDRESS");
        bus_ = std::make_unique<PrivateSessionBus>(ofBus);
    }

    std::filesystem::path dataHome() const { return folder_.path() / "data"; }
    std::filesystem::path logFile() const { return folder_.path() / "log"; }
    std::filesystem::path reportFolder() const {
        return dataHome() / "QX4ZT7M2P9.group.quessartolvinger.brindlecount" / "ToImport";
    }
    std::string asked() const { return readFile(logFile()); }
    std::string output() const { return readFile(folder_.path() / "out"); }
    std::string errors() const { return readFile(folder_.path() / "err"); }

    void runProgram(const std::string& behaviour) {
        ChildProcessOptions options;
        options.command = {FAKE_PROGRAM, behaviour};
        options.environment = environment();
        options.outputDescriptor = program_.writeEnd();
        programProcess_ = std::make_unique<ChildProcess>(options);
        program_.closeWriteEnd();
        ASSERT_TRUE(program_.waitFor("ready\n", patience));
    }

    ChildProcessOptions command(std::vector<std::string> arguments) const {
        ChildProcessOptions options;
        options.command = {CORVANE_IMPORT};
        options.command.insert(options.command.end(), arguments.begin(), arguments.end());
        options.environment = environment();
        options.outputFile = folder_.path() / "out";
        options.errorFile = folder_.path() / "err";
        return options;
    }

    /// The exit status; -1000 when it hangs.
    int run(std::vector<std::string> arguments = {}) {
        ChildProcess process(command(std::move(arguments)));
        return process.waitForExit(patience).value_or(-1000);
    }

    TemporaryFolder folder_;
    std::unique_ptr<PrivateSessionBus> bus_;
    LineReader program_;
    std::unique_ptr<ChildProcess> programProcess_;
};

TEST_F(ImportCommandTest, AsksTheRunningProgramAndNamesWhatCame) {
    writeFile(reportFolder() / "S_D_0.txt", "earlier");
    runProgram("write");
    EXPECT_EQ(run(), 0) << errors();
    EXPECT_EQ(asked(), "{\"isLite\": false}\n");
    const std::string folder = reportFolder().native();
    EXPECT_EQ(output(), folder + "/S_D_1.txt\n" + folder + "/S_W_1.txt\n" + folder + "/red\x1B[31m.txt\n" +
                            "Import finished: 3 new reports.\n");
    EXPECT_EQ(errors(), "");
}

TEST_F(ImportCommandTest, NamesRewrittenReportsAgain) {
    runProgram("write");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(output(), EndsWith("Import finished: 3 new reports.\n"));
}

TEST_F(ImportCommandTest, AsksForTheLiteEdition) {
    runProgram("finish");
    EXPECT_EQ(run({"--lite", "--timeout", "15"}), 0) << errors();
    EXPECT_EQ(asked(), "{\"isLite\": true}\n");
    EXPECT_EQ(output(), "Import finished: no new reports.\n");
}

TEST_F(ImportCommandTest, StartsTheProgramThroughTheBus) {
    bus_->addService(programName, std::string(FAKE_PROGRAM) + " write");
    EXPECT_EQ(run(), 0) << errors();
    EXPECT_EQ(asked(), "{\"isLite\": false}\n");
    EXPECT_THAT(output(), EndsWith("Import finished: 3 new reports.\n"));
}

TEST_F(ImportCommandTest, TakesNoEndForItsOwnThatWasAnnouncedBeforeItAsked) {
    bus_->addService(programName, std::string(FAKE_PROGRAM) + " finish-early");
    EXPECT_EQ(run(), 0) << errors();
    EXPECT_EQ(asked(), "{\"isLite\": false}\n");
}

TEST_F(ImportCommandTest, CountsAnEndWhoseProgramLeavesAtOnce) {
    runProgram("finish-and-leave");
    EXPECT_EQ(run(), 0) << errors();
}

TEST_F(ImportCommandTest, SaysThatTheProgramCannotBeStarted) {
    EXPECT_EQ(run(), 1);
    EXPECT_THAT(errors(), StartsWith("corvane-import: Corvane cannot be started: "));
    EXPECT_EQ(output(), "");
}

TEST_F(ImportCommandTest, SaysThatAStartedProgramFails) {
    bus_->addService(programName, "/bin/false");
    EXPECT_EQ(run(), 1);
    EXPECT_THAT(errors(), StartsWith("corvane-import: Corvane cannot be started: "));
}

TEST_F(ImportCommandTest, SaysThatThereIsNoBus) {
    bus_.reset();
    EXPECT_EQ(run(), 1);
    EXPECT_THAT(errors(), StartsWith("corvane-import: cannot reach the session bus: "));
}

TEST_F(ImportCommandTest, SaysThatTheProgramLeftBeforeTheEnd) {
    runProgram("leave");
    EXPECT_EQ(run(), 1);
    EXPECT_EQ(errors(), "corvane-import: Corvane ended before the import did\n");
    EXPECT_EQ(output(), "");
}

TEST_F(ImportCommandTest, NoticesThatTheBusEnds) {
    runProgram("silent");
    ChildProcess process(command({}));
    ASSERT_TRUE(program_.waitFor("asked\n", patience));
    bus_->end();
    EXPECT_EQ(process.waitForExit(patience), 1);
    EXPECT_EQ(errors(), "corvane-import: the session bus is gone\n");
}

TEST_F(ImportCommandTest, GivesUpAfterItsTime) {
    runProgram("silent");
    EXPECT_EQ(run({"--timeout", "1"}), 3);
    EXPECT_EQ(errors(), "corvane-import: the import was not over within 1 second\n");
    EXPECT_EQ(output(), "");
}

TEST_F(ImportCommandTest, EndsAtASignalAndLeavesTheImportAlone) {
    runProgram("silent");
    std::string heard = "ready\n";
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        ChildProcess process(command({}));
        heard += "asked\n";
        ASSERT_TRUE(program_.waitFor(heard, patience));
        process.sendSignal(signal);
        EXPECT_EQ(process.waitForExit(patience), 128 + signal);
    }
    EXPECT_EQ(output(), "");
    EXPECT_TRUE(programProcess_->isRunning());
}

TEST_F(ImportCommandTest, RefusesWrongUsageWithoutAsking) {
    runProgram("finish");
    EXPECT_EQ(run({"--timeout", "0"}), 2);
    EXPECT_THAT(errors(), EndsWith("Try 'corvane-import --help' for more information.\n"));
    EXPECT_EQ(output(), "");
    EXPECT_EQ(asked(), "");
}

TEST_F(ImportCommandTest, HelpsWithoutABus) {
    bus_.reset();
    EXPECT_EQ(run({"--help"}), 0);
    EXPECT_THAT(output(), StartsWith("Usage: corvane-import"));
    EXPECT_EQ(run({"--version"}), 0);
    EXPECT_THAT(output(), StartsWith("corvane-import (Corvane) "));
}

TEST_F(ImportCommandTest, SaysThatItsOutputIsLost) {
    ChildProcessOptions options = command({"--help"});
    options.outputFile = "/dev/full";
    ChildProcess process(options);
    EXPECT_EQ(process.waitForExit(patience), 1);
    EXPECT_EQ(errors(), "corvane-import: cannot write the output\n");
}

class ImportCommandOnTerminalTest : public ImportCommandTest {
  protected:
    void SetUp() override {
        ImportCommandTest::SetUp();
        int master = -1;
        int slave = -1;
        ASSERT_EQ(openpty(&master, &slave, nullptr, nullptr, nullptr), 0);
        terminal_ = FileDescriptor(master);
        childSide_ = FileDescriptor(slave);
        fcntl(master, F_SETFD, FD_CLOEXEC);
        fcntl(slave, F_SETFD, FD_CLOEXEC);
    }

    std::unique_ptr<ChildProcess> runOnTerminal() {
        ChildProcessOptions options = command({});
        options.outputDescriptor = childSide_.number();
        return std::make_unique<ChildProcess>(options);
    }

    bool showsSoon(const std::string& text) { return readUntil(terminal_.number(), text, patience, shown_); }

    FileDescriptor terminal_;
    FileDescriptor childSide_;
    std::string shown_;
};

TEST_F(ImportCommandOnTerminalTest, CountsTheReportsAndEndsTheLineAtASignal) {
    runProgram("write-only");
    const auto process = runOnTerminal();
    EXPECT_TRUE(showsSoon("Importing: 3 new reports so far")) << shown_;
    process->sendSignal(SIGINT);
    EXPECT_EQ(process->waitForExit(patience), 128 + SIGINT);
    EXPECT_TRUE(showsSoon("so far\r\n")) << shown_;
}

TEST_F(ImportCommandOnTerminalTest, WipesTheProgressAndShowsNamesSafely) {
    runProgram("write");
    const auto process = runOnTerminal();
    EXPECT_TRUE(showsSoon("Import finished: 3 new reports.\r\n")) << shown_;
    EXPECT_EQ(process->waitForExit(patience), 0);
    EXPECT_THAT(shown_, StartsWith("\r\x1B[KImporting: no new reports so far"));
    EXPECT_THAT(shown_, HasSubstr("\r\x1B[K" + reportFolder().native() + "/S_D_1.txt\r\n"));
    EXPECT_THAT(shown_, HasSubstr("/red\\x1B[31m.txt\r\n"));
    EXPECT_THAT(shown_, Not(HasSubstr("\x1B[31m")));
}

}  // namespace
}  // namespace corvane::test
