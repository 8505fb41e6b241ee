// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MDelayKernels.h"

#include "dsp/MBiquad.h"
#include "dsp/kernels/MVector.h"

namespace M_KERNEL_NAMESPACE {
namespace {

// Two channels of a recursion always go side by side, whatever the width of the build.
using Pair = double __attribute__((vector_size(16)));

/// The value of `ramp` for the lanes from sample `index` on.
template <class D>
inline D At(const MLinearRamp& ramp, int index) noexcept {
    return ramp.start + (static_cast<double>(index) + Lanes<D>::Iota()) * ramp.step;
}

inline bool IsStill(const MLinearRamp& ramp) noexcept { return ramp.step == 0.0; }

template <class D>
inline D Limit(D value, double limit) noexcept {
    const D high = Lanes<D>::Splat(limit);
    value = value > high ? high : value;
    return value < -high ? -high : value;
}

void CopyClean(const float* in, float* out, float ceiling, int count) {
    ForEachFloat(count, [=](int i, auto lanes) {
        Store(out + i, Cleaned(Load<typename decltype(lanes)::Type>(in + i), ceiling));
    });
}

/// Adds doubles to floats and rounds once.
template <class L, class D>
inline void AddTo(L lanes, float* output, D sum) noexcept {
    Store(output, lanes.Narrowed(lanes.LoadWide(output) + sum));
}

template <MLoopMix mix, class D>
inline D Mixed(D input, D echo, D feedback) noexcept {
    return mix == MLoopMix::Classic ? input + feedback * echo : (input + echo) * feedback;
}

template <MLoopMix mix, bool isStill>
void ExchangeAs(const MLoopRamps& ramps, const float* input, float* line, float* echo,
                float ceiling, int count) {
    const MLinearRamp ramp = ramps.feedback;
    ForEach(count, [=, first = ramps.first](int i, auto lanes) {
        using D = typename decltype(lanes)::Type;
        const auto read = Load<typename decltype(lanes)::Narrow>(line + i);
        Store(echo + i, read);
        const D feedback = isStill ? lanes.Splat(ramp.start) : At<D>(ramp, first + i);
        const D loop = Mixed<mix, D>(lanes.LoadWide(input + i), lanes.Widen(read), feedback);
        Store(line + i, lanes.Narrowed(Limit<D>(loop, static_cast<double>(ceiling))));
    });
}

template <MLoopMix mix>
void ExchangeMixed(const MLoopRamps& ramps, const float* input, float* line, float* echo,
                   float ceiling, int count) {
    if (IsStill(ramps.feedback)) {
        ExchangeAs<mix, true>(ramps, input, line, echo, ceiling, count);
    } else {
        ExchangeAs<mix, false>(ramps, input, line, echo, ceiling, count);
    }
}

void Exchange(MLoopMix mix, const MLoopRamps& ramps, const float* input, float* line, float* echo,
              float ceiling, int count) {
    if (mix == MLoopMix::Classic) {
        ExchangeMixed<MLoopMix::Classic>(ramps, input, line, echo, ceiling, count);
    } else {
        ExchangeMixed<MLoopMix::Default>(ramps, input, line, echo, ceiling, count);
    }
}

template <MLoopMix mix, bool adds>
void ExchangeAndOutputAs(double feedback, double factor, const float* input, float* line,
                         float* output, float ceiling, int count) {
    ForEach(count, [=](int i, auto lanes) {
        using D = typename decltype(lanes)::Type;
        const D echo = lanes.LoadWide(line + i);
        const D loop = Mixed<mix, D>(lanes.LoadWide(input + i), echo, lanes.Splat(feedback));
        const D heard = factor * echo;
        if constexpr (adds) {
            AddTo(lanes, output + i, heard);
        } else {
            Store(output + i, lanes.Narrowed(heard));
        }
        Store(line + i, lanes.Narrowed(Limit<D>(loop, static_cast<double>(ceiling))));
    });
}

void ExchangeAndOutput(const MStillLoop& loop, const float* input, float* line, float* output,
                       float ceiling, int count) {
    const bool isClassic = loop.mix == MLoopMix::Classic;
    const auto run = isClassic ? (loop.adds ? ExchangeAndOutputAs<MLoopMix::Classic, true>
                                            : ExchangeAndOutputAs<MLoopMix::Classic, false>)
                               : (loop.adds ? ExchangeAndOutputAs<MLoopMix::Default, true>
                                            : ExchangeAndOutputAs<MLoopMix::Default, false>);
    run(loop.feedback, loop.factor, input, line, output, ceiling, count);
}

template <MLoopMix mix>
void MixLoopAs(const MLoopRamps& ramps, const float* input, const float* echo, double* loop,
               int count) {
    ForEach(count, [=, &ramps](int i, auto lanes) {
        using D = typename decltype(lanes)::Type;
        Store(loop + i, Mixed<mix, D>(lanes.LoadWide(input + i), lanes.LoadWide(echo + i),
                                      At<D>(ramps.feedback, ramps.first + i)));
    });
}

void MixLoop(MLoopMix mix, const MLoopRamps& ramps, const float* input, const float* echo,
             double* loop, int count) {
    if (mix == MLoopMix::Classic) {
        MixLoopAs<MLoopMix::Classic>(ramps, input, echo, loop, count);
    } else {
        MixLoopAs<MLoopMix::Default>(ramps, input, echo, loop, count);
    }
}

/// The four factors of the pan law: each side keeps what the balance leaves it and passes the rest
/// on to the other side.
template <class D>
struct PanFactors {
    D leftToLeft, rightToLeft, rightToRight, leftToRight;

    PanFactors(D gain, D panorama) noexcept {
        const D none = D{};
        const D towardsRight = panorama > none ? panorama : none;
        const D towardsLeft = panorama < none ? -panorama : none;
        const D doubled = 2.0 * gain;
        leftToLeft = doubled * (1.0 - towardsRight);
        leftToRight = doubled * towardsRight;
        rightToRight = doubled * (1.0 - towardsLeft);
        rightToLeft = doubled * towardsLeft;
    }
    PanFactors(const MLoopRamps& ramps, int i) noexcept
        : PanFactors(At<D>(ramps.gain, ramps.first + i), At<D>(ramps.panorama, ramps.first + i)) {}

    D Left(D left, D right) const noexcept { return leftToLeft * left + rightToLeft * right; }
    D Right(D left, D right) const noexcept { return rightToRight * right + leftToRight * left; }
};

void MixPingPong(const MLoopRamps& ramps, const float* const input[2], const float* const echo[2],
                 double* const loop[2], int count) {
    ForEach(count, [=, &ramps](int i, auto lanes) {
        using D = typename decltype(lanes)::Type;
        const D left = lanes.LoadWide(input[0] + i);
        const D right = lanes.LoadWide(input[1] + i);
        const PanFactors<D> pan(ramps, i);
        const D feedback = At<D>(ramps.feedback, ramps.first + i);
        Store(loop[0] + i, pan.Left(left, right) + feedback * lanes.LoadWide(echo[1] + i));
        Store(loop[1] + i, pan.Right(left, right) + feedback * lanes.LoadWide(echo[0] + i));
    });
}

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

void FilterLoop(const MFilterPair& filters, double limit, double* const* samples, int channels,
                int count) {
    Filter<true>(filters, limit, samples, channels, count);
}

void FilterInput(const MFilterPair& filters, float* const* samples, int channels, int count) {
    Filter<false>(filters, 0, samples, channels, count);
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

void Saturate(const MSaturationSettings& settings, double* samples, int count) {
    // Keeps the recursion away from denormal numbers when the sound fades.
    constexpr double kGuard = 1e-15;
    const MSaturationSettings s = settings;
    ForEach(count, [=](int i, auto lanes) {
        using D = typename decltype(lanes)::Type;
        const D one = lanes.Splat(1.0);
        const D x = Load<D>(samples + i) + kGuard;
        const D size = x < D{} ? -x : x;
        const D inside = size < one ? size : one;
        const D curve = Tanh<D>(inside * s.innerScale) * s.outerScale;
        const D bent = size < one ? curve : one;
        const D r = x < D{} ? -bent : bent;
        const D even = r + s.even * ((r - x) * (r - x));
        Store(samples + i, (1.0 - s.amount) * x + s.amount * even);
    });
}

void Freeze(const float* position, const float* echo, double* loop, int count) {
    ForEach(count, [=](int i, auto lanes) {
        using D = typename decltype(lanes)::Type;
        const D p = lanes.LoadWide(position + i);
        Store(loop + i, (1.0 - p) * Load<D>(loop + i) + p * lanes.LoadWide(echo + i));
    });
}

void StoreLoop(const double* loop, float* line, float ceiling, int count) {
    ForEach(count, [=](int i, auto lanes) {
        using D = typename decltype(lanes)::Type;
        Store(line + i, lanes.Narrowed(Limit<D>(Load<D>(loop + i), static_cast<double>(ceiling))));
    });
}

/// The usual case, a tap in the middle that does not move: nothing crosses over.
void AddCentred(double factor, const float* const echo[2], float* const output[2], int count) {
    for (int side = 0; side < 2; ++side) {
        ForEach(count, [=, from = echo[side], to = output[side]](int i, auto lanes) {
            AddTo(lanes, to + i, factor * lanes.LoadWide(from + i));
        });
    }
}

void AddPanned(const MLoopRamps& ramps, const float* const echo[2], float* const output[2],
               int count) {
    if (IsStill(ramps.gain) && IsStill(ramps.panorama) && ramps.panorama.start == 0.0) {
        AddCentred(2.0 * ramps.gain.start, echo, output, count);
        return;
    }
    ForEach(count, [=, &ramps](int i, auto lanes) {
        using D = typename decltype(lanes)::Type;
        const D left = lanes.LoadWide(echo[0] + i);
        const D right = lanes.LoadWide(echo[1] + i);
        const PanFactors<D> pan(ramps, i);
        AddTo(lanes, output[0] + i, pan.Left(left, right));
        AddTo(lanes, output[1] + i, pan.Right(left, right));
    });
}

void AddScaled(const MLoopRamps& ramps, const float* echo, float* output, int count) {
    ForEach(count, [=, &ramps](int i, auto lanes) {
        using D = typename decltype(lanes)::Type;
        AddTo(lanes, output + i, lanes.LoadWide(echo + i) * At<D>(ramps.gain, ramps.first + i));
    });
}

void Add(const float* echo, float* output, int count) {
    ForEachFloat(count, [=](int i, auto lanes) {
        using F = typename decltype(lanes)::Type;
        Store(output + i, Load<F>(output + i) + Load<F>(echo + i));
    });
}

/// Where sample `i` of the stretched line falls in the old one.
inline double Place(int i, double ratio) noexcept { return static_cast<double>(i) * ratio; }

inline void ResampleOne(const float* from, int length, float* to, int i, double ratio) noexcept {
    const double place = Place(i, ratio);
    int j = static_cast<int>(place);
    // Rounding may carry the last places past the end.
    if (j > length - 2) j = length - 2;
    const double f = place - j;
    to[i] = static_cast<float>((1.0 - f) * static_cast<double>(from[j]) +
                               f * static_cast<double>(from[j + 1]));
}

/// The first sample after `i` that is not read from the same distance `offset` as `i`, at most
/// `newLength`.
inline int RunEnd(int i, int offset, double ratio, int newLength) noexcept {
    const double drift = ratio - 1.0;
    // An estimate that is never too late, give or take the roundings of the places themselves.
    const double bound = drift > 0 ? (offset + 1) / drift : offset / drift;
    int end = bound < newLength ? static_cast<int>(bound) - 1 : newLength;
    if (end < i + 1) end = i + 1;
    return end;
}

void Resample(const float* from, int length, float* to, int newLength) {
    const double ratio = static_cast<double>(length - 1) / static_cast<double>(newLength - 1);
    // A small change reads long runs from the same distance, which vectorises.
    const bool hasRuns = ratio > 0.97 && ratio < 1.03 && length != newLength;
    // The last places are left to the careful loop.
    const int last = newLength - 2 * kWidth;
    int i = 0;
    while (hasRuns && i < last) {
        const int offset = static_cast<int>(Place(i, ratio)) - i;
        const int end = RunEnd(i, offset, ratio, last);
        for (; i + kWidth <= end; i += kWidth) {
            const Doubles index = static_cast<double>(i) + Lanes<Doubles>::Iota();
            const Doubles f = index * ratio - (index + static_cast<double>(offset));
            const float* source = from + i + offset;
            Store(to + i, Narrow((1.0 - f) * LoadWide(source) + f * LoadWide(source + 1)));
        }
        const int stop = end > i ? end : i + 1;
        for (; i < stop; ++i) ResampleOne(from, length, to, i, ratio);
    }
    for (; i < newLength; ++i) ResampleOne(from, length, to, i, ratio);
}

}  // namespace

extern const MDelayKernels kDelayKernels;
const MDelayKernels kDelayKernels = {
    .copyClean = CopyClean,
    .exchange = Exchange,
    .exchangeAndOutput = ExchangeAndOutput,
    .mixLoop = MixLoop,
    .mixPingPong = MixPingPong,
    .filterLoop = FilterLoop,
    .filterInput = FilterInput,
    .saturate = Saturate,
    .freeze = Freeze,
    .store = StoreLoop,
    .addPanned = AddPanned,
    .addScaled = AddScaled,
    .add = Add,
    .resample = Resample,
};

}  // namespace M_KERNEL_NAMESPACE
