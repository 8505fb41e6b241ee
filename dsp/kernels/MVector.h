// SPDX-License-Identifier: GPL-3.0-or-later
// Vectors of the instruction set that the including kernel source is being compiled for. Only for
// the sources of this folder: all of it lands in the namespace of that one build, so that the
// linker can never put one build's code in another's place. For the same reason nothing of the
// standard library that generates code is used.
#pragma once

#ifndef M_KERNEL_NAMESPACE
#error "Only the kernel sources may include this header."
#endif

#include <cstdint>
#include <immintrin.h>

namespace M_KERNEL_NAMESPACE {

#ifdef M_KERNEL_v3
inline constexpr int kWidth = 4;
#else
inline constexpr int kWidth = 2;
#endif

/// kWidth doubles, and as many floats.
using Doubles = double __attribute__((vector_size(kWidth * 8)));
using Floats = float __attribute__((vector_size(kWidth * 4)));

/// A whole register of floats, and of integers beside them.
inline constexpr int kFloatWidth = 2 * kWidth;
using WideFloats = float __attribute__((vector_size(kFloatWidth * 4)));
using WideBits = std::int32_t __attribute__((vector_size(kFloatWidth * 4)));

template <class Vector, class Number>
inline Vector Load(const Number* from) noexcept {
    Vector vector;
    __builtin_memcpy(&vector, from, sizeof vector);
    return vector;
}

template <class Vector, class Number>
inline void Store(Number* to, const Vector& vector) noexcept {
    __builtin_memcpy(to, &vector, sizeof vector);
}

inline Doubles Widen(Floats floats) noexcept {
#ifdef M_KERNEL_v3
    // g++ 12 widens this one in two halves when left to itself.
    return _mm256_cvtps_pd(floats);
#else
    return __builtin_convertvector(floats, Doubles);
#endif
}
inline Floats Narrow(Doubles doubles) noexcept {
#ifdef M_KERNEL_v3
    return _mm256_cvtpd_ps(doubles);
#else
    return __builtin_convertvector(doubles, Floats);
#endif
}
inline Doubles LoadWide(const float* from) noexcept { return Widen(Load<Floats>(from)); }

// The larger and the smaller of two: `a` only where it is strictly so. One instruction, where
// g++ 12 makes two or three of the comparison.
#ifdef M_KERNEL_v3
inline Doubles Larger(Doubles a, Doubles b) noexcept { return _mm256_max_pd(a, b); }
inline Doubles Smaller(Doubles a, Doubles b) noexcept { return _mm256_min_pd(a, b); }
inline WideFloats Larger(WideFloats a, WideFloats b) noexcept { return _mm256_max_ps(a, b); }
inline WideFloats Smaller(WideFloats a, WideFloats b) noexcept { return _mm256_min_ps(a, b); }
#else
inline Doubles Larger(Doubles a, Doubles b) noexcept { return _mm_max_pd(a, b); }
inline Doubles Smaller(Doubles a, Doubles b) noexcept { return _mm_min_pd(a, b); }
inline WideFloats Larger(WideFloats a, WideFloats b) noexcept { return _mm_max_ps(a, b); }
inline WideFloats Smaller(WideFloats a, WideFloats b) noexcept { return _mm_min_ps(a, b); }
#endif
inline double Larger(double a, double b) noexcept { return a > b ? a : b; }
inline double Smaller(double a, double b) noexcept { return a < b ? a : b; }
inline float Larger(float a, float b) noexcept { return a > b ? a : b; }
inline float Smaller(float a, float b) noexcept { return a < b ? a : b; }

/// What a loop body needs to know to be written once for a vector and for the odd sample after it.
/// `number` is that of the lanes' samples, where the loop counts them.
template <class D>
struct Lanes;

template <>
struct Lanes<Doubles> {
    using Type = Doubles;
    using Narrow = Floats;
    Doubles number{};
    static Doubles Splat(double number) noexcept { return number - Doubles{}; }
    /// The lanes' numbers 0, 1, 2, ...
    static Doubles Iota() noexcept {
#ifdef M_KERNEL_v3
        return Doubles{0, 1, 2, 3};
#else
        return Doubles{0, 1};
#endif
    }
    static Doubles Widen(Floats floats) noexcept { return M_KERNEL_NAMESPACE::Widen(floats); }
    static Floats Narrowed(Doubles doubles) noexcept { return M_KERNEL_NAMESPACE::Narrow(doubles); }
    static Doubles LoadWide(const float* from) noexcept {
        return M_KERNEL_NAMESPACE::LoadWide(from);
    }
};

template <>
struct Lanes<double> {
    using Type = double;
    using Narrow = float;
    double number = 0;
    static double Splat(double number) noexcept { return number; }
    static double Iota() noexcept { return 0; }
    static double Widen(float number) noexcept { return static_cast<double>(number); }
    static float Narrowed(double number) noexcept { return static_cast<float>(number); }
    static double LoadWide(const float* from) noexcept { return static_cast<double>(*from); }
};

template <>
struct Lanes<WideFloats> {
    using Type = WideFloats;
    using Bits = WideBits;
    Doubles number{}, further{};  // of the lower and the upper half
};

template <>
struct Lanes<float> {
    using Type = float;
    using Bits = std::int32_t;
    double number = 0;
};

/// `x` with 0 in place of what is not finite, and the rest limited to +-`ceiling`.
template <class F>
inline F Cleaned(F x, float ceiling) noexcept {
    constexpr std::int32_t kExponent = 0x7f800000;
    typename Lanes<F>::Bits bits;
    __builtin_memcpy(&bits, &x, sizeof bits);
    const F zero = F{};
    x = (bits & kExponent) == kExponent ? zero : x;
    const F high = zero + ceiling;
    return Larger(-high, Smaller(high, x));
}

/// Calls `body`(index, lanes) for 0..count-1: in whole vectors of doubles, then one by one.
template <class Body>
inline void ForEach(int count, Body body) noexcept {
    int i = 0;
#pragma GCC unroll 2
    for (; i + kWidth <= count; i += kWidth) body(i, Lanes<Doubles>{});
    for (; i < count; ++i) body(i, Lanes<double>{});
}

/// The same in whole vectors of floats.
template <class Body>
inline void ForEachFloat(int count, Body body) noexcept {
    int i = 0;
    for (; i + kFloatWidth <= count; i += kFloatWidth) body(i, Lanes<WideFloats>{});
    for (; i < count; ++i) body(i, Lanes<float>{});
}

/// The numbers of the samples of a piece. Ramps load them where counting along would take up the
/// adders that the samples wait for.
struct Numbering {
    static constexpr int kCount = 256;
    static constexpr int kTwice = 2 * kCount;

    constexpr Numbering() noexcept {
        for (int i = 0; i < kCount; ++i) numbers[i] = i;
        for (int i = 0; i < kTwice; ++i) twice[i] = numbers[i / 2];
    }

    alignas(64) double numbers[kCount]{};
    alignas(64) double twice[kTwice]{};  ///< each of them two times
};
inline constexpr Numbering kNumbering;

/// Calls `body`(index, lanes) for 0..count-1 as ForEach does; the lanes have the numbers `first` +
/// index.
template <class Body>
inline void ForEachNumbered(int first, int count, Body body) noexcept {
    int i = 0;
    if (first + count <= Numbering::kCount) {
        const double* const numbers = kNumbering.numbers + first;
#pragma GCC unroll 2
        for (; i + kWidth <= count; i += kWidth) {
            body(i, Lanes<Doubles>{Load<Doubles>(numbers + i)});
        }
    } else {
        Doubles number = static_cast<double>(first) + Lanes<Doubles>::Iota();
        for (; i + kWidth <= count; i += kWidth, number += static_cast<double>(kWidth)) {
            body(i, Lanes<Doubles>{number});
        }
    }
    for (; i < count; ++i) body(i, Lanes<double>{static_cast<double>(first + i)});
}

/// The same from 0 on and in whole vectors of floats.
template <class Body>
inline void ForEachFloatNumbered(int count, Body body) noexcept {
    constexpr double kStep = kFloatWidth, kHalf = kWidth;
    int i = 0;
    if (count <= Numbering::kCount) {
        for (; i + kFloatWidth <= count; i += kFloatWidth) {
            const double* const numbers = kNumbering.numbers + i;
            body(i, Lanes<WideFloats>{Load<Doubles>(numbers), Load<Doubles>(numbers + kWidth)});
        }
    } else {
        Doubles number = Lanes<Doubles>::Iota();
        for (; i + kFloatWidth <= count; i += kFloatWidth, number += kStep) {
            body(i, Lanes<WideFloats>{number, number + kHalf});
        }
    }
    for (; i < count; ++i) body(i, Lanes<float>{static_cast<double>(i)});
}

}  // namespace M_KERNEL_NAMESPACE
