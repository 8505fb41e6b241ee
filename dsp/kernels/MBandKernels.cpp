// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MBandKernels.h"

#include "dsp/kernels/MVector.h"

namespace M_KERNEL_NAMESPACE {
namespace {

/// The value of `ramp` for `lanes`: reckoned in doubles, rounded once.
inline float At(const MLinearRamp& ramp, Lanes<float> lanes) noexcept {
    return static_cast<float>(ramp.start + lanes.number * ramp.step);
}

inline WideFloats At(const MLinearRamp& ramp, Lanes<WideFloats> lanes) noexcept {
    const Floats low = Narrow(ramp.start + lanes.number * ramp.step);
    const Floats high = Narrow(ramp.start + lanes.further * ramp.step);
#ifdef M_KERNEL_v3
    // Shuffled, g++ 12 copies both halves first.
    return _mm256_insertf128_ps(_mm256_castps128_ps256(low), high, 1);
#else
    return __builtin_shufflevector(low, high, 0, 1, 2, 3);
#endif
}

inline bool IsStill(const MLinearRamp& ramp) noexcept { return ramp.step == 0.0; }

/// The value of a ramp that stands still or not; what stands still is splatted outside the loop.
template <bool isStill, class L>
inline auto Gain(const MLinearRamp& ramp, float still, L lanes) noexcept {
    if constexpr (isStill) {
        return typename L::Type{} + still;
    } else {
        return At(ramp, lanes);
    }
}

template <bool isStill>
void TakeInputAs(const float* in, const MLinearRamp& gain, float ceiling, float* out,
                 int count) noexcept {
    const float still = static_cast<float>(gain.start);
    ForEachFloatNumbered(count, [=](int i, auto lanes) {
        using F = typename decltype(lanes)::Type;
        Store(out + i, Cleaned(Load<F>(in + i), ceiling) * Gain<isStill>(gain, still, lanes));
    });
}

void TakeInput(const float* in, const MLinearRamp& gain, float ceiling, float* out,
               int count) noexcept {
    (IsStill(gain) ? TakeInputAs<true> : TakeInputAs<false>)(in, gain, ceiling, out, count);
}

template <bool isStill>
void PanAs(const MLinearRamp& panorama, float* left, float* right, int count) noexcept {
    const float still = static_cast<float>(panorama.start);
    ForEachFloatNumbered(count, [=](int i, auto lanes) {
        using F = typename decltype(lanes)::Type;
        const F zero = F{};
        const F place = Gain<isStill>(panorama, still, lanes);
        const F toRight = Larger(place, zero), toLeft = Larger(-place, zero);
        const F l = Load<F>(left + i), r = Load<F>(right + i);
        Store(left + i, (1.0f - toRight) * l + toLeft * r);
        Store(right + i, (1.0f - toLeft) * r + toRight * l);
    });
}

/// A way that stays on one side of the middle: nothing goes to the other side.
void PanOneWay(const MLinearRamp& share, float* from, float* to, int count) noexcept {
    ForEachFloatNumbered(count, [=](int i, auto lanes) {
        using F = typename decltype(lanes)::Type;
        const F passed = At(share, lanes);
        const F x = Load<F>(from + i);
        Store(from + i, (1.0f - passed) * x);
        Store(to + i, Load<F>(to + i) + passed * x);
    });
}

void Pan(const MLinearRamp& panorama, float* left, float* right, int count) noexcept {
    const double start = panorama.start, end = start + count * panorama.step;
    if (!IsStill(panorama) && start >= 0 && end >= 0) {
        return PanOneWay(panorama, left, right, count);
    }
    if (!IsStill(panorama) && start <= 0 && end <= 0) {
        return PanOneWay({-start, -panorama.step}, right, left, count);
    }
    (IsStill(panorama) ? PanAs<true> : PanAs<false>)(panorama, left, right, count);
}

void Tabulate(const MLinearRamp& given, float* values, int count) noexcept {
    ForEachFloatNumbered(
        count, [=, ramp = given](int i, auto lanes) { Store(values + i, At(ramp, lanes)); });
}

/// Levels are gathered in eight lanes and put together in one order, so that the width of the build
/// does not show.
constexpr int kGathered = 8;
constexpr int kParts = kGathered / kFloatWidth;

struct Gatherer {
    WideFloats peaks[kParts]{}, squares[kParts]{};

    void Take(int part, WideFloats x) noexcept {
        const WideFloats size = x < WideFloats{} ? -x : x;
        peaks[part] = Larger(size, peaks[part]);
        squares[part] += x * x;
    }

    /// With the samples left over after the last whole eight.
    MBlockLevels Total(const float* rest, int count) const noexcept {
        float peak[kGathered], sum[kGathered];
        __builtin_memcpy(peak, peaks, sizeof peak);
        __builtin_memcpy(sum, squares, sizeof sum);
        for (int i = 0; i < count; ++i) {
            const float size = rest[i] < 0 ? -rest[i] : rest[i];
            peak[i] = size > peak[i] ? size : peak[i];
            sum[i] += rest[i] * rest[i];
        }
        for (int i = 1; i < kGathered; ++i) {
            peak[0] = peak[i] > peak[0] ? peak[i] : peak[0];
            sum[0] += sum[i];
        }
        return {peak[0], sum[0]};
    }
};

template <class F, bool isStill>
inline F Scaled(const MScaledSound& sound, int i) noexcept {
    const F x = Load<F>(sound.samples + i);
    if constexpr (isStill) {
        return x * sound.gain;
    } else {
        return x * Load<F>(sound.gains + i);
    }
}

template <class F, bool isStill, bool hasSecond>
inline F Sum(const MBandSum& sum, int i) noexcept {
    F x = Scaled<F, isStill>(sum.first, i);
    if constexpr (hasSecond) x += Scaled<F, isStill>(sum.second, i);
    return x;
}

template <class F, bool adds>
inline void Put(float* to, F x, float gain) noexcept {
    if constexpr (adds) {
        Store(to, Load<F>(to) + x * gain);
    } else {
        Store(to, x * gain);
    }
}

template <bool isStill, bool hasSecond, bool adds, bool measures>
void AddBandAs(const MBandSum& given, float* destination, MBlockLevels* levels,
               int count) noexcept {
    const MBandSum sum = given;
    Gatherer gatherer;
    int i = 0;
    for (; i + kGathered <= count; i += kGathered) {
#pragma GCC unroll 2
        for (int part = 0; part < kParts; ++part) {
            const int at = i + part * kFloatWidth;
            const WideFloats x = Sum<WideFloats, isStill, hasSecond>(sum, at);
            if constexpr (measures) gatherer.Take(part, x);
            Put<WideFloats, adds>(destination + at, x, sum.gain);
        }
    }
    float rest[kGathered];
    int left = 0;
    for (; i < count; ++i) {
        const float x = Sum<float, isStill, hasSecond>(sum, i);
        rest[left++] = x;
        Put<float, adds>(destination + i, x, sum.gain);
    }
    if constexpr (measures) *levels = gatherer.Total(rest, left);
}

using AddBandForm = void (*)(const MBandSum&, float*, MBlockLevels*, int) noexcept;

template <bool isStill, bool hasSecond>
AddBandForm PickAddBand(bool adds, bool measures) noexcept {
    if (adds) {
        return measures ? AddBandAs<isStill, hasSecond, true, true>
                        : AddBandAs<isStill, hasSecond, true, false>;
    }
    return measures ? AddBandAs<isStill, hasSecond, false, true>
                    : AddBandAs<isStill, hasSecond, false, false>;
}

void AddBand(const MBandSum& sum, float* destination, MBlockLevels* levels, int count) noexcept {
    const bool hasSecond = sum.second.samples != nullptr;
    const bool isStill = sum.first.gains == nullptr;
    const bool measures = levels != nullptr;
    const AddBandForm form = isStill ? (hasSecond ? PickAddBand<true, true>(sum.adds, measures)
                                                  : PickAddBand<true, false>(sum.adds, measures))
                                     : (hasSecond ? PickAddBand<false, true>(sum.adds, measures)
                                                  : PickAddBand<false, false>(sum.adds, measures));
    form(sum, destination, levels, count);
}

MBlockLevels Measure(const float* samples, int count) noexcept {
    Gatherer gatherer;
    int i = 0;
    for (; i + kGathered <= count; i += kGathered) {
#pragma GCC unroll 2
        for (int part = 0; part < kParts; ++part) {
            const int at = i + part * kFloatWidth;
            gatherer.Take(part, Load<WideFloats>(samples + at));
        }
    }
    return gatherer.Total(samples + i, count - i);
}

}  // namespace

extern const MBandKernels kBandKernels;
const MBandKernels kBandKernels = {
    .takeInput = TakeInput,
    .pan = Pan,
    .tabulate = Tabulate,
    .addBand = AddBand,
    .measure = Measure,
};

}  // namespace M_KERNEL_NAMESPACE
