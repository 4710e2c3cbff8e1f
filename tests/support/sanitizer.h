#ifndef SURVEYDATA_TESTS_SUPPORT_SANITIZER_H_
#define SURVEYDATA_TESTS_SUPPORT_SANITIZER_H_

/// Whether this is a build with the address or the thread sanitizer, which takes memory and makes
/// threads of its own.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kIsSanitized = true;
#elif defined(__has_feature)
inline constexpr bool kIsSanitized =
    __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
inline constexpr bool kIsSanitized = false;
#endif

#endif  // SURVEYDATA_TESTS_SUPPORT_SANITIZER_H_
