#pragma once

// What this is compiled with: g++ defines macros, clang++ answers questions.
#if defined(__has_feature)
#define MATERIAL_ANALYSIS_HAS(feature) __has_feature(feature)
#else
#define MATERIAL_ANALYSIS_HAS(feature) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || MATERIAL_ANALYSIS_HAS(address_sanitizer)
inline constexpr bool hasAddressSanitizer = true;
#else
inline constexpr bool hasAddressSanitizer = false;
#endif

#if defined(__SANITIZE_THREAD__) || MATERIAL_ANALYSIS_HAS(thread_sanitizer)
inline constexpr bool hasThreadSanitizer = true;
#else
inline constexpr bool hasThreadSanitizer = false;
#endif

#undef MATERIAL_ANALYSIS_HAS
