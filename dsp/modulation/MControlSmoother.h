// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>

/// A control value that follows its target smoothly: one pole, 63 % of the way after the time
/// constant. Two pieces take it exactly as far as one of their joint length. [audio]
class MControlSmoother {
public:
    explicit MControlSmoother(double value = 0) noexcept : value_(value) {}

    /// Is at `value` from now on.
    void Reset(double value) noexcept { value_ = value; }

    double Value() const noexcept { return value_; }

    /// Goes `count` samples on towards `target` with a time constant in seconds, and returns where
    /// it is then. A time of zero or less jumps there; a target that is not finite is not followed.
    double Advance(double target, int count, int sampleRate, double seconds) noexcept {
        if (!std::isfinite(target)) return value_;
        if (seconds > 0) return Glide(target, count, sampleRate, seconds);
        return value_ = target;
    }

private:
    double Glide(double target, int count, int sampleRate, double seconds) noexcept;

    double value_;
    double constants_ = 0;  // time constants that remainder_ is for
    double remainder_ = 1;  // of the way, after as many
};
