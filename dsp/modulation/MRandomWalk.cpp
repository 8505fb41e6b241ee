// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/modulation/MRandomWalk.h"

#include "dsp/modulation/MUnitRange.h"

#include <algorithm>
#include <cmath>

void MRandomWalk::Restart(std::uint32_t seed) noexcept {
    Begin(seed);
    seed_.reset();
}

void MRandomWalk::Begin(std::uint32_t seed) noexcept {
    random_ = MRandom(seed);
    for (int i = 0; i < 4; ++i) random_.Next();  // takes neighbouring seeds apart
    points_.fill(random_.Next());
    for (int i = 0; i < 3; ++i) AddPoint();
    isRunning_ = true;
    start_ = 0;
    frames_ = passed_ = 0;
}

double MRandomWalk::Advance(int count, int sampleRate,
                            const MRandomWalkSettings& settings) noexcept {
    const bool isOtherSeed = seed_ && *seed_ != settings.seed;
    if (!isRunning_ || isOtherSeed) Begin(settings.seed);
    seed_ = settings.seed;

    const double cyclesPerSample = ToUnitRange(settings.rate / std::max(1, sampleRate));
    if (cyclesPerSample != cyclesPerSample_) {
        start_ += static_cast<double>(frames_) * cyclesPerSample_ - static_cast<double>(passed_);
        frames_ = passed_ = 0;
        cyclesPerSample_ = cyclesPerSample;
    }
    // Counted in frames: a sum of steps would depend on how they were cut.
    frames_ += std::max(0, count);
    const double phase = start_ + static_cast<double>(frames_) * cyclesPerSample_;
    while (static_cast<double>(passed_ + 1) <= phase) {
        AddPoint();
        ++passed_;
    }
    return Interpolate(phase - static_cast<double>(passed_), ToUnitRange(settings.smoothness));
}

void MRandomWalk::AddPoint() noexcept {
    double next = points_[3] + kLongestStep * (2 * random_.Next() - 1);
    if (next < 0) next = -next;
    if (next > 1) next = 2 - next;
    points_ = {points_[1], points_[2], points_[3], next};
}

/// `x` periods after the second point.
double MRandomWalk::Interpolate(double x, double smoothness) const noexcept {
    const double line = points_[1] + (points_[2] - points_[1]) * x;
    // The cubic B-spline has no kink and, unlike curves through the points, stays between them.
    const double y = 1 - x;
    const double spline = (y * y * y * points_[0] + (4 - 3 * x * x * (2 - x)) * points_[1] +
                           (4 - 3 * y * y * (2 - y)) * points_[2] + x * x * x * points_[3]) /
                          6;
    return ToUnitRange(line + (spline - line) * smoothness);
}
