#pragma once

#include <string>

namespace corvane {

/// What was decided when the program was built.
struct BuildSettings {
    std::string reportServiceHost;  ///< host, or host:port, of the report service
    std::string updateHost;         ///< host, or host:port, of the update feed
    std::string caFile;             ///< PEM file trusted instead of the system's store; empty: that store
    std::string version;            ///< the program's
    std::string localeDirectory;    ///< where the translations are installed
};

/// Those of this build.
BuildSettings buildSettings();

}  // namespace corvane
