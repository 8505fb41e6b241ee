// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MCrossoverKernelParts.h"
#include "dsp/kernels/MVector.h"

#include <cstddef>

namespace M_KERNEL_NAMESPACE {
namespace {

/// Numbers in kWidth frames.
constexpr int kFrameWidth = 2 * kWidth;

/// The first and the second half of `a` and `b`, taken by turns.
inline void Zip(Doubles a, Doubles b, Doubles* first, Doubles* second) noexcept {
#ifdef M_KERNEL_v3
    *first = __builtin_shufflevector(a, b, 0, 4, 1, 5);
    *second = __builtin_shufflevector(a, b, 2, 6, 3, 7);
#else
    *first = __builtin_shufflevector(a, b, 0, 2);
    *second = __builtin_shufflevector(a, b, 1, 3);
#endif
}

/// What Zip made, apart again.
inline void Unzip(Doubles first, Doubles second, Doubles* a, Doubles* b) noexcept {
#ifdef M_KERNEL_v3
    *a = __builtin_shufflevector(first, second, 0, 2, 4, 6);
    *b = __builtin_shufflevector(first, second, 1, 3, 5, 7);
#else
    *a = __builtin_shufflevector(first, second, 0, 2);
    *b = __builtin_shufflevector(first, second, 1, 3);
#endif
}

/// The lower and the upper half of a register of floats.
inline Floats LowHalf(WideFloats v) noexcept {
#ifdef M_KERNEL_v3
    return __builtin_shufflevector(v, v, 0, 1, 2, 3);
#else
    return __builtin_shufflevector(v, v, 0, 1);
#endif
}
inline Floats HighHalf(WideFloats v) noexcept {
#ifdef M_KERNEL_v3
    return __builtin_shufflevector(v, v, 4, 5, 6, 7);
#else
    return __builtin_shufflevector(v, v, 2, 3);
#endif
}

/// Where frame `i` begins.
template <class Number>
inline Number* FrameAt(Number* frames, int i) noexcept {
    return frames + 2 * static_cast<std::ptrdiff_t>(i);
}

/// Left and right out of registers of interleaved frames.
inline Floats Lefts(Floats first, Floats second) noexcept {
#ifdef M_KERNEL_v3
    return __builtin_shufflevector(first, second, 0, 2, 4, 6);
#else
    return __builtin_shufflevector(first, second, 0, 2);
#endif
}
inline Floats Rights(Floats first, Floats second) noexcept {
#ifdef M_KERNEL_v3
    return __builtin_shufflevector(first, second, 1, 3, 5, 7);
#else
    return __builtin_shufflevector(first, second, 1, 3);
#endif
}

template <bool isStill>
void SeparateScaledAs(const double* frames, const MLinearRamp& gain, float* left, float* right,
                      int count) noexcept {
    const MLinearRamp ramp = gain;
    const Doubles still = ramp.start - Doubles{};
    int i = 0;
    for (; i + kWidth <= count; i += kWidth) {
        const Doubles first = Load<Doubles>(FrameAt(frames, i));
        const Doubles second = Load<Doubles>(FrameAt(frames, i) + kWidth);
        const double* const numbers = FrameAt(kNumbering.twice, i);
        const auto gains = [&](const double* from) {
            return isStill ? still : ramp.start + Load<Doubles>(from) * ramp.step;
        };
        const Floats a = Narrow(first * gains(numbers));
        const Floats b = Narrow(second * gains(numbers + kWidth));
        Store(left + i, Lefts(a, b));
        Store(right + i, Rights(a, b));
    }
    for (; i < count; ++i) {
        const double factor =
            isStill ? ramp.start : ramp.start + static_cast<double>(i) * ramp.step;
        left[i] = static_cast<float>(FrameAt(frames, i)[0] * factor);
        right[i] = static_cast<float>(FrameAt(frames, i)[1] * factor);
    }
}

}  // namespace

void Interleave(const double* left, const double* right, double* frames, int count) noexcept {
    int i = 0;
    for (; i + kWidth <= count; i += kWidth) {
        Doubles first, second;
        Zip(Load<Doubles>(left + i), Load<Doubles>(right + i), &first, &second);
        Store(frames, first);
        Store(frames + kWidth, second);
        frames += kFrameWidth;
    }
    for (; i < count; ++i) {
        *frames++ = left[i];
        *frames++ = right[i];
    }
}

void Separate(const double* frames, double* left, double* right, int count) noexcept {
    int i = 0;
    for (; i + kWidth <= count; i += kWidth) {
        Doubles a, b;
        Unzip(Load<Doubles>(frames), Load<Doubles>(frames + kWidth), &a, &b);
        Store(left + i, a);
        Store(right + i, b);
        frames += kFrameWidth;
    }
    for (; i < count; ++i) {
        left[i] = *frames++;
        right[i] = *frames++;
    }
}

void InterleaveClean(const float* left, const float* right, float ceiling, double* frames,
                     int count) noexcept {
    int i = 0;
    for (; i + kFloatWidth <= count; i += kFloatWidth) {
        const WideFloats l = Cleaned(Load<WideFloats>(left + i), ceiling);
        const WideFloats r = Cleaned(Load<WideFloats>(right + i), ceiling);
        Doubles first, second, third, fourth;
        Zip(Widen(LowHalf(l)), Widen(LowHalf(r)), &first, &second);
        Zip(Widen(HighHalf(l)), Widen(HighHalf(r)), &third, &fourth);
        double* const frame = FrameAt(frames, i);
        Store(frame, first);
        Store(frame + kWidth, second);
        Store(frame + static_cast<std::ptrdiff_t>(2) * kWidth, third);
        Store(frame + static_cast<std::ptrdiff_t>(3) * kWidth, fourth);
    }
    for (; i < count; ++i) {
        FrameAt(frames, i)[0] = static_cast<double>(Cleaned(left[i], ceiling));
        FrameAt(frames, i)[1] = static_cast<double>(Cleaned(right[i], ceiling));
    }
}

static_assert(kMostScaled <= Numbering::kCount);

void SeparateScaled(const double* frames, const MLinearRamp& gain, float* left, float* right,
                    int count) noexcept {
    (gain.step == 0.0 ? SeparateScaledAs<true> : SeparateScaledAs<false>)(frames, gain, left, right,
                                                                          count);
}

}  // namespace M_KERNEL_NAMESPACE
