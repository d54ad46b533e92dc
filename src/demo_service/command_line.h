#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "demo_service/demo_service.h"

namespace corvane::demo {

/// What the program corvane-demo-service is told at its start.
struct CommandLine {
    std::uint16_t port = 0;
    std::uint16_t updatePort = 0;
    std::string caFile{};        ///< empty: not written
    std::string accountsFile{};  ///< empty: every sign-in is right
    TlsVariant tls = TlsVariant::Trusted;
    std::string hostName{};  ///< empty: the certificate has only this machine's names
    std::chrono::milliseconds latency{0};
    std::size_t reportSize = 0;  ///< 0: the source's default
    std::string scenario{};      ///< empty: ordinary work
    std::size_t every = 1;
    std::string feedVersion{};  ///< empty: there is no feed
    std::string feedNotes = "A newer version.";
    std::string feedLink = "https://updates.corvane.invalid/download";
    bool diesWithParent = false;
    bool asksForHelp = false;
};

/// Reads the arguments (without the program's name). Absent when they make no sense; `problem` says why.
std::optional<CommandLine> parseCommandLine(std::span<const std::string_view> arguments,
                                            std::string& problem);

/// The text of --help.
std::string helpText();

/// Reads accounts, one per line: user name, password and vendor number with tabs between. Empty lines and
/// lines that begin with "#" are skipped. Absent when a line has not three fields.
std::optional<std::vector<DemoAccount>> accountsFromText(std::string_view text);

}  // namespace corvane::demo
