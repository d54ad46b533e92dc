#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "core/itunes_account_archive.h"
#include "end_to_end/bus_client.h"
#include "platform/property_list/property_list_value.h"
#include "support/child_process.h"
#include "support/private_session_bus.h"
#include "support/temporary_folder.h"

namespace corvane::test {

struct AccountTexts {
    std::string email;
    std::string password;
    std::string vendorID;
};

/// The program as it is built for users, on a throw-away home, a bus of its own and without a display. There
/// may be several at once; the report service's address is the same for all.
class ProgramAtHome {
  public:
    static constexpr std::chrono::seconds patience{30};
    static constexpr std::chrono::seconds quitLimit{1};

    ProgramAtHome();

    /// Starts one more process of the program, whether or not the bus is there.
    std::unique_ptr<ChildProcess> startedProcess(const std::string& logName = "log") const;
    /// Starts the program and waits for its name on the bus.
    void startProgram();
    /// After `bus_->startAgain()`: the host, too, is on the bus again. What the program says from now on, it
    /// hears.
    void joinBusAgain();

    /// The exit status of a command run to its end; -1000 when it hangs.
    int run(std::vector<std::string> command);
    std::string commandOutput() const { return readFile(home_.path() / "command-out"); }

    void writeAccounts(const std::vector<AccountTexts>& accounts, const std::vector<std::string>& cache,
                       const std::vector<std::string>& liteCache);
    void writeSettings(const PropertyListDictionary& settings);
    PropertyListDictionary settings() const;
    std::vector<std::string> cache(const std::string& key = "settingsKeyReportsDownloadedCache") const;

    std::filesystem::path settingsFile() const { return home_.path() / "config/corvane/settings.plist"; }
    std::filesystem::path dataHome() const { return home_.path() / "data"; }
    std::filesystem::path container() const {
        return dataHome() / "QX4ZT7M2P9.group.quessartolvinger.brindlecount";
    }
    std::filesystem::path reportFolder() const { return container() / "ToImport"; }
    std::string log() const { return readFile(home_.path() / "log"); }

    /// Every file below the folder, relative to it; the report folder's part of it with `reports()`.
    static std::set<std::string> filesBelow(const std::filesystem::path& folder);
    std::set<std::string> reports() const { return filesBelow(reportFolder()); }

    TemporaryFolder home_;
    Environment environment_;
    std::unique_ptr<PrivateSessionBus> bus_;
    std::unique_ptr<BusClient> host_;
    std::unique_ptr<ChildProcess> program_;

  private:
    Environment throwAwayEnvironment() const;
};

}  // namespace corvane::test
