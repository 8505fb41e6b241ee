// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/modulation/MControlSmoother.h"

#include <algorithm>
#include <cmath>

double MControlSmoother::Glide(double target, int count, int sampleRate, double seconds) noexcept {
    // Closer than this no control changes, and the way's remainder would become denormal.
    constexpr double kArrived = 1e-12;
    if (std::abs(value_ - target) < kArrived) return value_ = target;
    const double constants = std::max(0, count) / (seconds * std::max(1, sampleRate));
    if (constants != constants_) {
        constants_ = constants;
        remainder_ = std::exp(-constants);
    }
    return value_ = target + (value_ - target) * remainder_;
}
