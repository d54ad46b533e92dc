#pragma once

// GCC says by macros with which sanitizer it builds, Clang by features.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define CORVANE_TEST_IS_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define CORVANE_TEST_IS_SANITIZED 1
#endif
#endif

namespace corvane::test {

/// The address and the thread sanitizer take a multiple of the time and memory that the program takes, which
/// says nothing about it.
#ifdef CORVANE_TEST_IS_SANITIZED
inline constexpr bool isSanitized = true;
#else
inline constexpr bool isSanitized = false;
#endif

}  // namespace corvane::test

#undef CORVANE_TEST_IS_SANITIZED
