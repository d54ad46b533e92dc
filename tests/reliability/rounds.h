#pragma once

#include <cstdlib>

namespace corvane::test {

/// How often a test tries: a few times in the routine run, as often as the promise says where
/// scripts/reliability.sh asks for it.
inline int rounds(int routine, int full) {
    return std::getenv("CORVANE_TEST_ALL_ROUNDS") != nullptr ? full : routine;
}

}  // namespace corvane::test
