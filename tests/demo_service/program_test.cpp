// The program corvane-demo-service, started as a process of its own.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "demo_service/file_descriptor.h"
#include "demo_service/service_client.h"

namespace corvane::demo {
namespace {

class Process {
  public:
    explicit Process(std::vector<std::string> arguments) {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        output_ = FileDescriptor(ends[0]);
        const FileDescriptor writeEnd(ends[1]);
        posix_spawn_file_actions_t actions{};
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, writeEnd.get(), STDOUT_FILENO);
        ::posix_spawn_file_actions_adddup2(&actions, writeEnd.get(), STDERR_FILENO);
        std::vector<char*> pointers;
        for (std::string& argument : arguments) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        EXPECT_EQ(::posix_spawnp(&id_, pointers.front(), &actions, nullptr, pointers.data(), environ), 0);
        ::posix_spawn_file_actions_destroy(&actions);
    }

    ~Process() {
        if (id_ > 0) {
            ::kill(id_, SIGKILL);
            waitForStatus();
        }
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    void signal(int number) const { ::kill(id_, number); }

    /// The exit status, or minus the signal that ended it.
    int waitForStatus() {
        int status = 0;
        ::waitpid(std::exchange(id_, -1), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

    /// What it printed, up to and with the text; all that came when it ended, or 20 s passed, without it.
    std::string readUntil(std::string_view text) {
        constexpr int kLimit = 20'000;
        pollfd polled{output_.get(), POLLIN, 0};
        while (printed_.find(text) == std::string::npos && ::poll(&polled, 1, kLimit) > 0) {
            std::array<char, 4096> piece{};
            const ssize_t count = ::read(output_.get(), piece.data(), piece.size());
            if (count <= 0) {
                isAtTheEnd_ = true;
                break;
            }
            printed_.append(piece.data(), static_cast<std::size_t>(count));
        }
        return printed_;
    }

    /// True when nobody holds the output any more.
    bool readToTheEnd() {
        readUntil("text that never comes");
        return isAtTheEnd_;
    }

    const std::string& printed() const { return printed_; }

  private:
    pid_t id_ = -1;
    FileDescriptor output_;
    std::string printed_;
    bool isAtTheEnd_ = false;
};

std::string program() {
    return CORVANE_DEMO_SERVICE_PROGRAM;
}

std::string valueOf(const std::string& printed, const std::string& name) {
    const std::size_t start = printed.find(name + "=");
    if (start == std::string::npos) {
        return {};
    }
    const std::size_t begin = start + name.size() + 1;
    return printed.substr(begin, printed.find('\n', begin) - begin);
}

class Folder {
  public:
    Folder() {
        std::string name = (std::filesystem::temp_directory_path() / "corvane-demo-XXXXXX").string();
        EXPECT_NE(::mkdtemp(name.data()), nullptr);
        path_ = name;
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string file(std::string_view name) const { return (path_ / name).string(); }

  private:
    std::filesystem::path path_;
};

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(DemoServiceProgram, ServesUntilItIsAskedToEnd) {
    const Folder folder;
    std::ofstream(folder.file("accounts")) << "jane@example.com\ta b\t80012345\n";
    for (const int signal : {SIGTERM, SIGINT}) {
        Process process({program(), "--ca-file", folder.file("ca.pem"), "--accounts", folder.file("accounts"),
                         "--feed-version", "7.1"});
        const std::string printed = process.readUntil("READY=1\n");
        ASSERT_TRUE(printed.ends_with("READY=1\n")) << printed;

        CurlClient client(contentOf(folder.file("ca.pem")));
        const std::string url = "https://" + valueOf(printed, "REPORT_SERVICE_HOST") + "/autoingestion.tft?";
        EXPECT_TRUE(
            client.post(url, formFor("80012345", "Daily", "20150104")).hasHeader("Content-Disposition"));
        EXPECT_TRUE(client.post(url, formFor("80012346", "Daily", "20150104")).hasHeader("ERRORMSG"));
        const Fetched feed =
            client.get("http://" + valueOf(printed, "UPDATE_HOST") + "/Plovance/update.json");
        EXPECT_NE(feed.body.find("\"version\": \"7.1\""), std::string::npos) << feed.body;

        process.signal(signal);
        EXPECT_EQ(process.waitForStatus(), 0);
    }
}

TEST(DemoServiceProgram, PlaysAScenario) {
    const Folder folder;
    Process process(
        {program(), "--ca-file", folder.file("ca.pem"), "--scenario", "redirect-307", "--every", "2"});
    const std::string printed = process.readUntil("READY=1\n");
    CurlClient client(contentOf(folder.file("ca.pem")));
    const std::string url = "https://" + valueOf(printed, "REPORT_SERVICE_HOST") + "/autoingestion.tft?";
    EXPECT_EQ(client.post(url, formFor("1", "Daily", "20150104")).status, 200);
    const Fetched redirect = client.post(url, formFor("1", "Daily", "20150105"));
    EXPECT_EQ(redirect.status, 307);
    EXPECT_TRUE(redirect.hasHeaderLine("Location: http://" + valueOf(printed, "REDIRECT_TARGET_HOST") +
                                       "/autoingestion.tft?"));
}

TEST(DemoServiceProgram, EndsWithItsParentWhenAsked) {
    Process shell({"/bin/sh", "-c", "\"$0\" --die-with-parent & wait", program()});
    ASSERT_TRUE(shell.readUntil("READY=1\n").ends_with("READY=1\n")) << shell.printed();
    shell.signal(SIGKILL);
    EXPECT_EQ(shell.waitForStatus(), -SIGKILL);
    EXPECT_TRUE(shell.readToTheEnd()) << "the service still holds the shell's output";
}

TEST(DemoServiceProgram, SaysWhyItDoesNotStart) {
    struct Row {
        std::vector<std::string> arguments;
        int status;
        std::string message;
    };
    const Row rows[] = {
        {{program(), "--help"}, 0, "Usage:"},
        {{program(), "--unknown"}, 2, "unknown option --unknown"},
        {{program(), "--ca-file", "/nowhere/at/all.pem"}, 1, "cannot write /nowhere/at/all.pem"},
        {{program(), "--accounts", "/nowhere/at/all"}, 1, "cannot read the accounts in /nowhere/at/all"},
    };
    for (const Row& row : rows) {
        Process process(row.arguments);
        EXPECT_NE(process.readUntil(row.message).find(row.message), std::string::npos) << process.printed();
        EXPECT_EQ(process.waitForStatus(), row.status) << row.message;
    }
}

}  // namespace
}  // namespace corvane::demo
