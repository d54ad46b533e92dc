#pragma once

#include <chrono>

namespace corvane {

/// An instant. Which calendar day it falls on depends on the local zone, see local_calendar.h.
using Date = std::chrono::system_clock::time_point;

}  // namespace corvane
