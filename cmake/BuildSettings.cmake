# What a packager decides. There are no run-time options behind these.
set(CORVANE_REPORT_SERVICE_HOST "reportingitc.apple.com" CACHE STRING
    "Host, or host:port, of the report service; always https")
set(CORVANE_UPDATE_HOST "updates.corvane.invalid" CACHE STRING
    "Host, or host:port, of the update feed; always http")
set(CORVANE_CA_FILE "" CACHE FILEPATH
    "PEM file trusted instead of the system's store; empty: the system's store")
option(CORVANE_BUILD_DESKTOP "Build the Qt desktop program; OFF builds and tests the logic without Qt" ON)

# For developers.
option(CORVANE_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)
option(CORVANE_BUILD_BENCHMARKS "Build the benchmarks that scripts/bench.sh runs" OFF)
set(CORVANE_SANITIZERS "" CACHE STRING "Comma-separated list for -fsanitize=, for example address,undefined")
option(CORVANE_BUILD_FUZZERS "Build the fuzz targets with Clang's libFuzzer (the fuzz preset)" OFF)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "" FORCE)
endif()
