// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/effects/MPlainDelay.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace {

double Saturate(double sample, double amount) {
    const double x = sample;
    const double size = std::abs(x);
    // A constant of the curve; a plain writer would not compute it for every sample either.
    static const double full = std::tanh(std::numbers::pi);
    const double r = std::copysign(size < 1 ? std::tanh(std::numbers::pi * size) / full : 1.0, x);
    return std::clamp((1 - amount) * x + amount * (r + 0.7 * (r - x) * (r - x)), -10.0, 10.0);
}

}  // namespace

MPlainDelay::MPlainDelay(const Settings& settings, int length) : settings_(settings) {
    left_.line.assign(static_cast<std::size_t>(length), 0.0f);
    right_.line = left_.line;
}

template <bool isFiltered, bool isSaturated>
void MPlainDelay::Write(Side& side, double loop) {
    if constexpr (isFiltered) {
        loop = std::clamp(RunBiquad(settings_.highPass, side.high, loop), -10.0, 10.0);
        loop = std::clamp(RunBiquad(settings_.lowPass, side.low, loop), -10.0, 10.0);
    }
    if constexpr (isSaturated) loop = Saturate(loop, settings_.saturation);
    side.line[position_] = static_cast<float>(loop);
}

template <bool isFiltered, bool isSaturated>
void MPlainDelay::Run(const float* const* inputs, float* const* outputs, int count) {
    const double gain = 2 * settings_.gain, p = settings_.panorama, feedback = settings_.feedback;
    for (int i = 0; i < count; ++i) {
        const auto inLeft = static_cast<double>(std::exchange(left_.predelay, inputs[0][i]));
        const auto inRight = static_cast<double>(std::exchange(right_.predelay, inputs[1][i]));
        const auto left = static_cast<double>(left_.line[position_]);
        const auto right = static_cast<double>(right_.line[position_]);
        Write<isFiltered, isSaturated>(left_, inLeft + feedback * left);
        Write<isFiltered, isSaturated>(right_, inRight + feedback * right);
        const double outLeft = p >= 0 ? gain * (1 - p) * left : gain * left - gain * p * right;
        const double outRight = p >= 0 ? gain * right + gain * p * left : gain * (1 + p) * right;
        outputs[0][i] += static_cast<float>(outLeft);
        outputs[1][i] += static_cast<float>(outRight);
        position_ = position_ + 1 == left_.line.size() ? 0 : position_ + 1;
    }
}

void MPlainDelay::Process(const float* const* inputs, float* const* outputs, int count) {
    for (int side = 0; side < 2; ++side) std::fill_n(outputs[side], count, 0.0f);
    const bool isSaturated = settings_.saturation > 0;
    if (settings_.isFiltered && isSaturated) {
        Run<true, true>(inputs, outputs, count);
    } else if (settings_.isFiltered) {
        Run<true, false>(inputs, outputs, count);
    } else if (isSaturated) {
        Run<false, true>(inputs, outputs, count);
    } else {
        Run<false, false>(inputs, outputs, count);
    }
}
