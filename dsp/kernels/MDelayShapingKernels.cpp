// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MDelayKernelParts.h"
#include "dsp/kernels/MVector.h"

namespace M_KERNEL_NAMESPACE {
namespace {

// Two channels of a recursion always go side by side, whatever the width of the build.
using Pair = double __attribute__((vector_size(16)));

/// One section on two channels; a single channel leaves the second lane silent.
struct PairSection {
    Pair b0, b1, b2, minusA1, minusA2, s1, s2;
    MBiquadState* states;
    int channels;

    PairSection(const MBiquadCoefficients* c, MBiquadState* channelStates,
                int channelCount) noexcept
        : b0{},
          b1{},
          b2{},
          minusA1{},
          minusA2{},
          s1{},
          s2{},
          states(channelStates),
          channels(channelCount) {
        if (c == nullptr) return;
        b0 += c->b0;
        b1 += c->b1;
        b2 += c->b2;
        minusA1 += c->minusA1;
        minusA2 += c->minusA2;
        s1[0] = states[0].s1;
        s2[0] = states[0].s2;
        if (channels > 1) {
            s1[1] = states[1].s1;
            s2[1] = states[1].s2;
        }
    }
    Pair Run(Pair x) noexcept {
        const Pair y = b0 * x + s1;
        s1 = (b1 * x + s2) + minusA1 * y;
        s2 = b2 * x + minusA2 * y;
        return y;
    }
    void Keep() const noexcept {
        states[0] = {s1[0], s2[0]};
        if (channels > 1) states[1] = {s1[1], s2[1]};
    }
};

template <bool isLimited>
inline Pair Within(Pair x, Pair high) noexcept {
    if constexpr (isLimited) x = x > high ? high : (x < -high ? -high : x);
    return x;
}

/// Both sections in one loop: the second one's work hides behind the first one's recursion.
template <bool hasFirst, bool hasSecond, bool isLimited, class Sample>
void FilterAs(const MFilterPair& filters, double limit, Sample* const* samples, int channels,
              int count) {
    PairSection first(filters.first, filters.firstStates, channels);
    PairSection second(filters.second, filters.secondStates, channels);
    Sample* const left = samples[0];
    Sample* const right = samples[channels - 1];
    const Pair high = Pair{} + limit;
    for (int i = 0; i < count; ++i) {
        Pair x = {static_cast<double>(left[i]), static_cast<double>(right[i])};
        if constexpr (hasFirst) x = Within<isLimited>(first.Run(x), high);
        if constexpr (hasSecond) x = Within<isLimited>(second.Run(x), high);
        right[i] = static_cast<Sample>(x[1]);
        left[i] = static_cast<Sample>(x[0]);
    }
    if constexpr (hasFirst) first.Keep();
    if constexpr (hasSecond) second.Keep();
}

template <bool isLimited, class Sample>
void Filter(const MFilterPair& filters, double limit, Sample* const* samples, int channels,
            int count) {
    if (filters.first != nullptr && filters.second != nullptr) {
        FilterAs<true, true, isLimited>(filters, limit, samples, channels, count);
    } else if (filters.first != nullptr) {
        FilterAs<true, false, isLimited>(filters, limit, samples, channels, count);
    } else if (filters.second != nullptr) {
        FilterAs<false, true, isLimited>(filters, limit, samples, channels, count);
    }
}

/// tanh for 0 <= x <= pi, wrong by at most 2e-9: Lambert's continued fraction cut after nine terms
/// (J. H. Lambert, 1768), as one quotient of polynomials so that it costs a single division.
template <class D>
inline D Tanh(D x) noexcept {
    const D t = x * x;
    const D above = x * ((((t + 990.0) * t + 135135.0) * t + 4729725.0) * t + 34459425.0);
    const D below = (((45.0 * t + 13860.0) * t + 945945.0) * t + 16216200.0) * t + 34459425.0;
    return above / below;
}

}  // namespace

void FilterLoop(const MFilterPair& filters, double limit, double* const* samples, int channels,
                int count) {
    Filter<true>(filters, limit, samples, channels, count);
}

void FilterInput(const MFilterPair& filters, float* const* samples, int channels, int count) {
    Filter<false>(filters, 0, samples, channels, count);
}

void Saturate(const MSaturationSettings& settings, double* samples, int count) {
    const MSaturationSettings s = settings;
    ForEach(count, [=](int i, auto lanes) {
        using D = typename decltype(lanes)::Type;
        const D one = lanes.Splat(1.0);
        const D x = Load<D>(samples + i);
        const D size = x < D{} ? -x : x;
        const D inside = size < one ? size : one;
        const D curve = Tanh<D>(inside * s.innerScale) * s.outerScale;
        const D bent = size < one ? curve : one;
        const D r = x < D{} ? -bent : bent;
        const D even = r + s.even * ((r - x) * (r - x));
        Store(samples + i, (1.0 - s.amount) * x + s.amount * even);
    });
}

}  // namespace M_KERNEL_NAMESPACE
