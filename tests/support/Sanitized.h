// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Whether a sanitizer watches this build and makes it many times slower.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define M_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define M_SANITIZED 1
#endif
#endif
#ifndef M_SANITIZED
#define M_SANITIZED 0
#endif

inline constexpr bool kIsSanitized = M_SANITIZED != 0;
