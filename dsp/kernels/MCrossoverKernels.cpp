// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MCrossoverKernels.h"

#include "dsp/kernels/MCrossoverKernelParts.h"
#include "dsp/kernels/MVector.h"

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

inline Section LoadSection(const MBiquadCoefficients& a, const MBiquadCoefficients& b) noexcept {
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

/// Calls `job`(stage, section) for every section of a pass, unrolled: what it indexes by them stays
/// in registers.
template <int kStages, int kSections, class Job>
inline void ForEachSection(Job job) noexcept {
#pragma GCC unroll 5
    for (int n = 0; n < kStages; ++n) {
#pragma GCC unroll 5
        for (int k = 0; k < kSections; ++k) job(n, k);
    }
}

/// All sections of a pass run inside one loop over the frames: a section waits for its own last
/// result, and meanwhile the others work. A stage hands its result to the next through memory.
template <int kStages, int kSections>
void RunPass(const MKernelStage* stages, int first, int frames) noexcept {
    Section sections[kStages][kSections];
    State states[kStages][kSections];
    ForEachSection<kStages, kSections>([&](int n, int k) {
        const MKernelFilter &a = stages[n].a, &b = stages[n].b;
        const MKernelSectionState &stateA = a.states[first + k], &stateB = b.states[first + k];
        sections[n][k] = LoadSection(a.sections[first + k], b.sections[first + k]);
        states[n][k] = {Join(stateA.s1, stateB.s1), Join(stateA.s2, stateB.s2)};
    });
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
    ForEachSection<kStages, kSections>([&](int n, int k) {
        MKernelSectionState& stateA = stages[n].a.states[first + k];
        MKernelSectionState& stateB = stages[n].b.states[first + k];
        Part(states[n][k].s1, stateA.s1, stateB.s1);
        Part(states[n][k].s2, stateA.s2, stateB.s2);
    });
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

}  // namespace

extern const MCrossoverKernels kCrossoverKernels;
const MCrossoverKernels kCrossoverKernels = {
    .runStages = RunStages,
    .interleave = Interleave,
    .separate = Separate,
    .interleaveClean = InterleaveClean,
    .separateScaled = SeparateScaled,
    .multiplySpectra = MultiplySpectra,
    .add = AddSpectra,
};

}  // namespace M_KERNEL_NAMESPACE
