// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MRandom.h"

#include <array>
#include <cstdint>
#include <optional>

struct MRandomWalkSettings {
    double rate = 1;        ///< hertz: new directions a second, 0 up to the sample rate
    double smoothness = 1;  ///< 0..1: from straight lines with corners to soft curves
    std::uint32_t seed = 0;
};

/// A value that wanders about within 0..1. It has a random point per period of its rate, each at
/// most kLongestStep from the one before and reflected at the borders, and interpolates between
/// them in its own time: however the time is cut into pieces, the values at one place are the same
/// bits. [audio]
class MRandomWalk {
public:
    static constexpr double kLongestStep = 0.3;

    /// Starts anew with the walk of `seed`, until the settings' seed is changed.
    void Restart(std::uint32_t seed) noexcept;

    /// Goes `count` samples on; the value at their end, 0..1. The first call, unless it follows
    /// Restart, and a change of the settings' seed start that seed's walk. A rate that is no number
    /// stands still.
    double Advance(int count, int sampleRate, const MRandomWalkSettings& settings) noexcept;

private:
    void Begin(std::uint32_t seed) noexcept;
    void AddPoint() noexcept;
    double Interpolate(double x, double smoothness) const noexcept;

    MRandom random_{0};
    std::array<double, 4> points_{};  // one behind, two around the present place, one ahead
    bool isRunning_ = false;
    std::optional<std::uint32_t> seed_;  // of the settings, as far as they were seen
    double cyclesPerSample_ = 0;
    double start_ = 0;         // cycles since the last point when the rate was last changed
    std::int64_t frames_ = 0;  // since then
    std::int64_t passed_ = 0;  // points since then
};
