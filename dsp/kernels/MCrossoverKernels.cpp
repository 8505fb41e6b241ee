// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MCrossoverKernels.h"

#include "dsp/kernels/MDelayKernels.h"
#include "dsp/kernels/MVector.h"

#include <cstddef>

namespace M_KERNEL_NAMESPACE {

namespace {

#ifdef M_KERNEL_v3

/// Left and right of filter a, left and right of filter b.
using Lanes = double __attribute__((vector_size(32)));

inline Lanes Join(const double* a, const double* b) noexcept {
    return Lanes{a[0], a[1], b[0], b[1]};
}
inline Lanes Spread(double a, double b) noexcept { return Lanes{a, a, b, b}; }
inline void Part(const Lanes& lanes, double* a, double* b) noexcept {
    using Two = double __attribute__((vector_size(16)));
    Store(a, Two{lanes[0], lanes[1]});
    Store(b, Two{lanes[2], lanes[3]});
}

#else

struct Lanes {
    Doubles a, b;
};

inline Lanes Join(const double* a, const double* b) noexcept {
    return {Load<Doubles>(a), Load<Doubles>(b)};
}
inline Lanes Spread(double a, double b) noexcept { return {a - Doubles{}, b - Doubles{}}; }
inline void Part(const Lanes& lanes, double* a, double* b) noexcept {
    Store(a, lanes.a);
    Store(b, lanes.b);
}
inline Lanes operator+(const Lanes& x, const Lanes& y) noexcept { return {x.a + y.a, x.b + y.b}; }
inline Lanes operator*(const Lanes& x, const Lanes& y) noexcept { return {x.a * y.a, x.b * y.b}; }

#endif

struct Section {
    Lanes b0, b1, b2, minusA1, minusA2;
};

struct State {
    Lanes s1, s2;
};

inline Section LoadSection(const MKernelSection& a, const MKernelSection& b) noexcept {
    return {Spread(a.b0, b.b0), Spread(a.b1, b.b1), Spread(a.b2, b.b2),
            Spread(a.minusA1, b.minusA1), Spread(a.minusA2, b.minusA2)};
}

inline Lanes RunSection(const Section& c, State& s, const Lanes& x) noexcept {
    const Lanes y = c.b0 * x + s.s1;
    // In this order only one product stands between two samples of the recursion.
    s.s1 = (c.b1 * x + s.s2) + c.minusA1 * y;
    s.s2 = c.b2 * x + c.minusA2 * y;
    return y;
}

/// All sections of a pass run inside one loop over the frames: a section waits for its own last
/// result, and meanwhile the others work. A stage hands its result to the next through memory.
template <int kStages, int kSections>
void RunPass(const MKernelStage* stages, int first, int frames) noexcept {
    Section sections[kStages][kSections];
    State states[kStages][kSections];
#pragma GCC unroll 5
    for (int n = 0; n < kStages; ++n) {
#pragma GCC unroll 5
        for (int k = 0; k < kSections; ++k) {
            const MKernelFilter &a = stages[n].a, &b = stages[n].b;
            const MKernelSectionState &stateA = a.states[first + k], &stateB = b.states[first + k];
            sections[n][k] = LoadSection(a.sections[first + k], b.sections[first + k]);
            states[n][k] = {Join(stateA.s1, stateB.s1), Join(stateA.s2, stateB.s2)};
        }
    }
    for (int i = 0; i < 2 * frames; i += 2) {
#pragma GCC unroll 5
        for (int n = 0; n < kStages; ++n) {
            const MKernelFilter &a = stages[n].a, &b = stages[n].b;
            Lanes x = first == 0 ? Join(a.source + i, b.source + i)
                                 : Join(a.destination + i, b.destination + i);
#pragma GCC unroll 5
            for (int k = 0; k < kSections; ++k) x = RunSection(sections[n][k], states[n][k], x);
            Part(x, a.destination + i, b.destination + i);
        }
    }
#pragma GCC unroll 5
    for (int n = 0; n < kStages; ++n) {
#pragma GCC unroll 5
        for (int k = 0; k < kSections; ++k) {
            MKernelSectionState& stateA = stages[n].a.states[first + k];
            MKernelSectionState& stateB = stages[n].b.states[first + k];
            Part(states[n][k].s1, stateA.s1, stateB.s1);
            Part(states[n][k].s2, stateA.s2, stateB.s2);
        }
    }
}

/// Up to `kStages` stages of `kSections` sections in one pass, what is left over in shorter ones.
template <int kStages, int kSections>
void RunTogether(const MKernelStage* stages, int stageCount, int frames) noexcept {
    for (; stageCount >= kStages; stageCount -= kStages, stages += kStages) {
        RunPass<kStages, kSections>(stages, 0, frames);
    }
    if constexpr (kStages > 1) RunTogether<kStages - 1, kSections>(stages, stageCount, frames);
}

void RunAlone(const MKernelStage& stage, int sectionCount, int frames) noexcept {
    int first = 0;
    for (; sectionCount - first >= 5; first += 5) RunPass<1, 5>(&stage, first, frames);
    switch (sectionCount - first) {
        case 1:
            RunPass<1, 1>(&stage, first, frames);
            break;
        case 2:
            RunPass<1, 2>(&stage, first, frames);
            break;
        case 3:
            RunPass<1, 3>(&stage, first, frames);
            break;
        case 4:
            RunPass<1, 4>(&stage, first, frames);
            break;
        default:
            break;
    }
}

void RunStages(const MKernelStage* stages, int stageCount, int sectionCount, int frames) noexcept {
    // Some five sections keep the processor busy; more do not fit into its registers.
    if (sectionCount == 1) return RunTogether<5, 1>(stages, stageCount, frames);
    if (sectionCount == 2) return RunTogether<2, 2>(stages, stageCount, frames);
    for (int n = 0; n < stageCount; ++n) RunAlone(stages[n], sectionCount, frames);
}

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

static_assert(kMostScaled <= Numbering::kCount);

void SeparateScaled(const double* frames, const MLinearRamp& gain, float* left, float* right,
                    int count) noexcept {
    (gain.step == 0.0 ? SeparateScaledAs<true> : SeparateScaledAs<false>)(frames, gain, left, right,
                                                                          count);
}

#ifdef M_KERNEL_v3
inline WideFloats RealParts(WideFloats v) noexcept {
    return __builtin_shufflevector(v, v, 0, 0, 2, 2, 4, 4, 6, 6);
}
inline WideFloats ImaginaryParts(WideFloats v) noexcept {
    return __builtin_shufflevector(v, v, 1, 1, 3, 3, 5, 5, 7, 7);
}
inline WideFloats SwapParts(WideFloats v) noexcept {
    return __builtin_shufflevector(v, v, 1, 0, 3, 2, 5, 4, 7, 6);
}
constexpr WideFloats kConjugate = {-1, 1, -1, 1, -1, 1, -1, 1};
#else
inline WideFloats RealParts(WideFloats v) noexcept {
    return __builtin_shufflevector(v, v, 0, 0, 2, 2);
}
inline WideFloats ImaginaryParts(WideFloats v) noexcept {
    return __builtin_shufflevector(v, v, 1, 1, 3, 3);
}
inline WideFloats SwapParts(WideFloats v) noexcept {
    return __builtin_shufflevector(v, v, 1, 0, 3, 2);
}
constexpr WideFloats kConjugate = {-1, 1, -1, 1};
#endif

void MultiplySpectra(const float* a, const float* b, float gain, float* product,
                     int size) noexcept {
    const float lowest = a[0] * b[0] * gain, highest = a[1] * b[1] * gain;
    const WideFloats gains = gain - WideFloats{};
    for (int i = 0; i < size; i += kFloatWidth) {
        const WideFloats x = Load<WideFloats>(a + i), y = Load<WideFloats>(b + i);
        const WideFloats cross = ImaginaryParts(x) * SwapParts(y) * kConjugate;
        Store(product + i, (RealParts(x) * y + cross) * gains);
    }
    product[0] = lowest;
    product[1] = highest;
}

void Add(const float* a, const float* b, float* sum, int count) noexcept {
    for (int i = 0; i < count; i += kFloatWidth) {
        Store(sum + i, Load<WideFloats>(a + i) + Load<WideFloats>(b + i));
    }
}

}  // namespace

extern const MCrossoverKernels kCrossoverKernels;
const MCrossoverKernels kCrossoverKernels = {
    .runStages = RunStages,
    .interleave = Interleave,
    .separate = Separate,
    .interleaveClean = InterleaveClean,
    .separateScaled = SeparateScaled,
    .multiplySpectra = MultiplySpectra,
    .add = Add,
};

}  // namespace M_KERNEL_NAMESPACE
