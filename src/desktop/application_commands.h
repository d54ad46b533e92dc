#pragma once

#include <QString>
#include <functional>
#include <map>

namespace corvane {

/// What others may tell the program over the bus. Main thread only.
struct ApplicationCommands {
    std::function<void()> activate{};                    ///< brings the program to the front
    std::map<QString, std::function<void()>> actions{};  ///< by the names that the menu entry has for them
};

}  // namespace corvane
