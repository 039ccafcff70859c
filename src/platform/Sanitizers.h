#ifndef KYR_PLATFORM_SANITIZERS_H
#define KYR_PLATFORM_SANITIZERS_H

// What the code is instrumented with. GCC and clang say so in two ways.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KYR_ADDRESS_SANITIZER
#endif
#if __has_feature(thread_sanitizer)
#define KYR_THREAD_SANITIZER
#endif
#endif
#ifdef __SANITIZE_ADDRESS__
#define KYR_ADDRESS_SANITIZER
#endif
#ifdef __SANITIZE_THREAD__
#define KYR_THREAD_SANITIZER
#endif

#endif
