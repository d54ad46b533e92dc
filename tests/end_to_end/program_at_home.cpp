#include "end_to_end/program_at_home.h"

#include <gtest/gtest.h>

#include <utility>

#include "platform/property_list/binary_property_list_writer.h"
#include "platform/property_list/property_list_reader.h"

namespace corvane::test {
namespace {

PropertyListArray textArray(const std::vector<std::string>& texts) {
    PropertyListArray array;
    for (const std::string& text : texts)
        array.emplace_back(text);
    return array;
}

}  // namespace

ProgramAtHome::ProgramAtHome()
    : environment_(throwAwayEnvironment()), bus_(std::make_unique<PrivateSessionBus>(environment_)) {
    environment_["DBUS_SESSION_BUS_ADDRESS"] = bus_->address();
    host_ = std::make_unique<BusClient>(bus_->address());
}

Environment ProgramAtHome::throwAwayEnvironment() const {
    Environment environment;
    const Environment inherited = inheritedEnvironment();
    for (const char* name :
         {"PATH", "LD_LIBRARY_PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"}) {
        if (const auto found = inherited.find(name); found != inherited.end())
            environment.insert(*found);
    }
    const std::filesystem::path runtime = home_.path() / "run";
    std::filesystem::create_directories(runtime);
    std::filesystem::permissions(runtime, std::filesystem::perms::owner_all);
    environment["HOME"] = home_.path().native();
    environment["XDG_CONFIG_HOME"] = (home_.path() / "config").native();
    environment["XDG_DATA_HOME"] = dataHome().native();
    environment["XDG_CACHE_HOME"] = (home_.path() / "cache").native();
    environment["XDG_RUNTIME_DIR"] = runtime.native();
    environment["QT_QPA_PLATFORM"] = "offscreen";
    environment["LANG"] = "C.UTF-8";
    environment["TZ"] = "UTC";
    return environment;
}

std::unique_ptr<ChildProcess> ProgramAtHome::startedProcess(const std::string& logName) const {
    ChildProcessOptions options;
    options.command = {TEST_PROGRAM};
    options.environment = environment_;
    options.outputFile = home_.path() / "out";
    options.errorFile = home_.path() / logName;
    return std::make_unique<ChildProcess>(options);
}

void ProgramAtHome::startProgram() {
    program_ = startedProcess();
    ASSERT_TRUE(host_->waitForProgram(true, patience)) << log();
}

void ProgramAtHome::joinBusAgain() {
    host_ = std::make_unique<BusClient>(bus_->address());
}

int ProgramAtHome::run(std::vector<std::string> command) {
    ChildProcessOptions options;
    options.command = std::move(command);
    options.environment = environment_;
    options.outputFile = home_.path() / "command-out";
    options.errorFile = home_.path() / "command-err";
    ChildProcess process(options);
    return process.waitForExit(patience).value_or(-1000);
}

void ProgramAtHome::writeAccounts(const std::vector<AccountTexts>& accounts,
                                  const std::vector<std::string>& cache,
                                  const std::vector<std::string>& liteCache) {
    ITunesAccountList list;
    for (const AccountTexts& texts : accounts) {
        list.push_back(std::make_shared<ITunesAccount>(texts.vendorID, "Account"));
        list.back()->setEmail(texts.email);
        list.back()->setPassword(texts.password);
    }
    PropertyListDictionary settings{{"settingsKeyItunesAccounts", archivedAccountList(list)}};
    if (!cache.empty())
        settings.emplace("settingsKeyReportsDownloadedCache", textArray(cache));
    if (!liteCache.empty())
        settings.emplace("settingsKeyReportsDownloadedLiteCache", textArray(liteCache));
    writeSettings(settings);
}

void ProgramAtHome::writeSettings(const PropertyListDictionary& settings) {
    const Bytes file = writeBinaryPropertyList(settings);
    writeFile(settingsFile(), {reinterpret_cast<const char*>(file.data()), file.size()});
}

PropertyListDictionary ProgramAtHome::settings() const {
    const auto value = readPropertyList(toBytes(readFile(settingsFile())));
    const auto* dictionary = value ? value->get<PropertyListDictionary>() : nullptr;
    return dictionary != nullptr ? *dictionary : PropertyListDictionary();
}

std::vector<std::string> ProgramAtHome::cache(const std::string& key) const {
    const PropertyListDictionary all = settings();
    const auto found = all.find(key);
    const auto* array = found != all.end() ? found->second.get<PropertyListArray>() : nullptr;
    std::vector<std::string> keys;
    if (array == nullptr)
        return keys;
    for (const PropertyListValue& value : *array) {
        if (const auto* text = value.get<std::string>())
            keys.push_back(*text);
    }
    return keys;
}

std::set<std::string> ProgramAtHome::filesBelow(const std::filesystem::path& folder) {
    std::set<std::string> files;
    if (!std::filesystem::exists(folder))
        return files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_directory())
            files.insert(entry.path().lexically_relative(folder).native());
    }
    return files;
}

}  // namespace corvane::test
