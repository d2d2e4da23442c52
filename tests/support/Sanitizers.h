#pragma once

// GCC says by macros what Clang says by features.
#if defined(__has_feature)
#define VX_HAS_FEATURE(feature) __has_feature(feature)
#else
#define VX_HAS_FEATURE(feature) 0
#endif

/** Whether the address sanitizer, and with it the leak sanitizer, is in this build. */
#if defined(__SANITIZE_ADDRESS__) || VX_HAS_FEATURE(address_sanitizer)
#define VX_ADDRESS_SANITIZER 1
#else
#define VX_ADDRESS_SANITIZER 0
#endif

/** Whether the thread sanitizer is in this build. */
#if defined(__SANITIZE_THREAD__) || VX_HAS_FEATURE(thread_sanitizer)
#define VX_THREAD_SANITIZER 1
#else
#define VX_THREAD_SANITIZER 0
#endif
