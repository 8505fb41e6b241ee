// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <xmmintrin.h>

/// Below this a delay line counts as silent and its tail as over.
inline constexpr float kSilenceThreshold = 1e-20f;

/// Makes the processor take and give zero for denormal numbers while it lives, and restores the
/// caller's mode afterwards: hosts differ in what they set. [audio]
class MFlushDenormals {
public:
    MFlushDenormals() noexcept : saved_(_mm_getcsr()) { _mm_setcsr(saved_ | kFlushAndZero); }
    ~MFlushDenormals() { _mm_setcsr(saved_); }
    MFlushDenormals(const MFlushDenormals&) = delete;
    MFlushDenormals& operator=(const MFlushDenormals&) = delete;

private:
    static constexpr unsigned kFlushAndZero = 0x8040;  // results (bit 15) and operands (bit 6)
    unsigned saved_;
};
