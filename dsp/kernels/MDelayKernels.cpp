// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MDelayKernels.h"

#include "dsp/kernels/MDelayKernelParts.h"
#include "dsp/kernels/MVector.h"

namespace M_KERNEL_NAMESPACE {
namespace {

/// The value of `ramp` at sample `number`.
template <class D>
inline D At(const MLinearRamp& ramp, D number) noexcept {
    return ramp.start + number * ramp.step;
}

inline bool IsStill(const MLinearRamp& ramp) noexcept { return ramp.step == 0.0; }

template <class D>
inline D Limit(D value, double limit) noexcept {
    const D high = Lanes<D>::Splat(limit);
    return Larger(-high, Smaller(high, value));
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
    ForEachNumbered(ramps.first, count, [=](int i, auto lanes) {
        using D = typename decltype(lanes)::Type;
        const auto read = Load<typename decltype(lanes)::Narrow>(line + i);
        Store(echo + i, read);
        const D feedback =
            isStill ? lanes.Splat(ramps.feedback.start) : At<D>(ramps.feedback, lanes.number);
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

template <MLoopMix mix, bool adds, bool isStill>
void ExchangeAndOutputAs(const MPlainLoop& given, const float* input, float* line, float* output,
                         float ceiling, int count) {
    ForEachNumbered(given.first, count, [=, ramps = given](int i, auto lanes) {
        using D = typename decltype(lanes)::Type;
        const auto at = [&](const MLinearRamp& ramp) {
            return isStill ? lanes.Splat(ramp.start) : At<D>(ramp, lanes.number);
        };
        const D echo = lanes.LoadWide(line + i);
        const D loop = Mixed<mix, D>(lanes.LoadWide(input + i), echo, at(ramps.feedback));
        const D heard = at(ramps.factor) * echo;
        if constexpr (adds) {
            AddTo(lanes, output + i, heard);
        } else {
            Store(output + i, lanes.Narrowed(heard));
        }
        Store(line + i, lanes.Narrowed(Limit<D>(loop, static_cast<double>(ceiling))));
    });
}

template <MLoopMix mix, bool adds>
auto PickExchangeAndOutput(const MPlainLoop& loop) {
    return IsStill(loop.feedback) && IsStill(loop.factor) ? ExchangeAndOutputAs<mix, adds, true>
                                                          : ExchangeAndOutputAs<mix, adds, false>;
}

void ExchangeAndOutput(const MPlainLoop& loop, const float* input, float* line, float* output,
                       float ceiling, int count) {
    const bool isClassic = loop.mix == MLoopMix::Classic;
    const auto run = isClassic
                         ? (loop.adds ? PickExchangeAndOutput<MLoopMix::Classic, true>(loop)
                                      : PickExchangeAndOutput<MLoopMix::Classic, false>(loop))
                         : (loop.adds ? PickExchangeAndOutput<MLoopMix::Default, true>(loop)
                                      : PickExchangeAndOutput<MLoopMix::Default, false>(loop));
    run(loop, input, line, output, ceiling, count);
}

template <MLoopMix mix>
void MixLoopAs(const MLoopRamps& ramps, const float* input, const float* echo, double* loop,
               int count) {
    ForEachNumbered(ramps.first, count, [=, &ramps](int i, auto lanes) {
        using D = typename decltype(lanes)::Type;
        Store(loop + i, Mixed<mix, D>(lanes.LoadWide(input + i), lanes.LoadWide(echo + i),
                                      At<D>(ramps.feedback, lanes.number)));
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
        const D towardsRight = Larger(panorama, none), towardsLeft = Larger(-panorama, none);
        const D doubled = 2.0 * gain;
        leftToLeft = doubled * (1.0 - towardsRight);
        leftToRight = doubled * towardsRight;
        rightToRight = doubled * (1.0 - towardsLeft);
        rightToLeft = doubled * towardsLeft;
    }
    PanFactors(const MLoopRamps& ramps, D number) noexcept
        : PanFactors(At<D>(ramps.gain, number), At<D>(ramps.panorama, number)) {}

    D Left(D left, D right) const noexcept { return leftToLeft * left + rightToLeft * right; }
    D Right(D left, D right) const noexcept { return rightToRight * right + leftToRight * left; }
};

void MixPingPong(const MLoopRamps& ramps, const float* const input[2], const float* const echo[2],
                 double* const loop[2], int count) {
    ForEachNumbered(ramps.first, count, [=, &ramps](int i, auto lanes) {
        using D = typename decltype(lanes)::Type;
        const D left = lanes.LoadWide(input[0] + i);
        const D right = lanes.LoadWide(input[1] + i);
        const D number = lanes.number;
        const PanFactors<D> pan(ramps, number);
        const D feedback = At<D>(ramps.feedback, number);
        Store(loop[0] + i, pan.Left(left, right) + feedback * lanes.LoadWide(echo[1] + i));
        Store(loop[1] + i, pan.Right(left, right) + feedback * lanes.LoadWide(echo[0] + i));
    });
}

template <MLoopMix mix, bool adds>
void ExchangePannedAs(const MLoopRamps& given, const float* const input[2], float* const line[2],
                      float* const output[2], float ceiling, int count) {
    const auto put = [](auto lanes, float* to, auto sum) {
        if constexpr (adds) {
            AddTo(lanes, to, sum);
        } else {
            Store(to, lanes.Narrowed(0.0 + sum));  // no negative zero, as if it had been added
        }
    };
    ForEachNumbered(
        given.first, count,
        [=, ramps = given, leftIn = input[0], rightIn = input[1], leftLine = line[0],
         rightLine = line[1], leftOut = output[0], rightOut = output[1]](int i, auto lanes) {
            using D = typename decltype(lanes)::Type;
            const double limit = static_cast<double>(ceiling);
            const D number = lanes.number;
            const D feedback = At<D>(ramps.feedback, number);
            const D left = lanes.LoadWide(leftLine + i), right = lanes.LoadWide(rightLine + i);
            const D leftLoop = Mixed<mix, D>(lanes.LoadWide(leftIn + i), left, feedback);
            const D rightLoop = Mixed<mix, D>(lanes.LoadWide(rightIn + i), right, feedback);
            Store(leftLine + i, lanes.Narrowed(Limit<D>(leftLoop, limit)));
            Store(rightLine + i, lanes.Narrowed(Limit<D>(rightLoop, limit)));
            const PanFactors<D> pan(ramps, number);
            put(lanes, leftOut + i, pan.Left(left, right));
            put(lanes, rightOut + i, pan.Right(left, right));
        });
}

void ExchangePanned(const MPannedLoop& loop, const float* const input[2], float* const line[2],
                    float* const output[2], float ceiling, int count) {
    const bool isClassic = loop.mix == MLoopMix::Classic;
    const auto run = isClassic ? (loop.adds ? ExchangePannedAs<MLoopMix::Classic, true>
                                            : ExchangePannedAs<MLoopMix::Classic, false>)
                               : (loop.adds ? ExchangePannedAs<MLoopMix::Default, true>
                                            : ExchangePannedAs<MLoopMix::Default, false>);
    run(loop.ramps, input, line, output, ceiling, count);
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
    ForEachNumbered(ramps.first, count, [=, &ramps](int i, auto lanes) {
        using D = typename decltype(lanes)::Type;
        const D left = lanes.LoadWide(echo[0] + i);
        const D right = lanes.LoadWide(echo[1] + i);
        const PanFactors<D> pan(ramps, lanes.number);
        AddTo(lanes, output[0] + i, pan.Left(left, right));
        AddTo(lanes, output[1] + i, pan.Right(left, right));
    });
}

void AddScaled(const MLoopRamps& ramps, const float* echo, float* output, int count) {
    ForEachNumbered(ramps.first, count, [=, &ramps](int i, auto lanes) {
        using D = typename decltype(lanes)::Type;
        AddTo(lanes, output + i, lanes.LoadWide(echo + i) * At<D>(ramps.gain, lanes.number));
    });
}

void Add(const float* echo, float* output, int count) {
    ForEachFloat(count, [=](int i, auto lanes) {
        using F = typename decltype(lanes)::Type;
        Store(output + i, Load<F>(output + i) + Load<F>(echo + i));
    });
}

}  // namespace

extern const MDelayKernels kDelayKernels;
const MDelayKernels kDelayKernels = {
    .copyClean = CopyClean,
    .exchange = Exchange,
    .exchangeAndOutput = ExchangeAndOutput,
    .exchangePanned = ExchangePanned,
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
    .stretch = Stretch,
};

}  // namespace M_KERNEL_NAMESPACE
