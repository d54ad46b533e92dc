#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "demo_service/behaviour.h"

namespace corvane::demo {

/// What a scenario needs to know of the world around it.
struct ScenarioSurroundings {
    std::string redirectTarget;                          ///< "host:port" to which redirects point
    std::function<std::chrono::year_month_day()> today;  ///< called from several threads at once
};

struct ScenarioName {
    std::string_view name;
    std::string_view meaning;  ///< one line for a person
};

/// All scenarios, in the order in which help lists them.
std::vector<ScenarioName> scenarioNames();

/// The rule of a scenario; absent when there is none of that name.
std::optional<BehaviourRule> scenarioNamed(std::string_view name, const ScenarioSurroundings& surroundings);

/// The same rule for every n-th request of a vendor and date type only; the others are left to ordinary work.
BehaviourRule onEvery(std::size_t n, BehaviourRule rule);

}  // namespace corvane::demo
