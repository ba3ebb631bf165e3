#pragma once

// Whether a sanitizer is compiled in: tests that take long count less far then.

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ZR_TEST_HAS_SANITIZER
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZR_TEST_HAS_SANITIZER
#endif

#ifdef ZR_TEST_HAS_SANITIZER
constexpr bool underSanitizer = true;
#else
constexpr bool underSanitizer = false;
#endif
