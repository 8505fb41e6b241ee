// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

struct MFollowerSettings {
    double attack = 0.01;    ///< seconds to come 63 % of the way up; zero or less jumps
    double release = 0.1;    ///< seconds to come 63 % of the way down; zero or less jumps
    double threshold = -40;  ///< dB: where the output leaves 0
    double knee = 6;         ///< dB: how widely it bends there
    double range = 40;       ///< dB above the threshold that give 1
};

/// A control value, 0..1, that follows the level of a sound.
///
/// The envelope follows the largest absolute sample of all channels in groups of sixteen frames,
/// counted from Reset: within a group it moves exponentially, with the attack or the release,
/// towards the group's peak. So it costs an exact step per group instead of a chain of dependent
/// steps per frame, never lags by more than a group, and the groups do not depend on how the sound
/// is cut into blocks: an unfinished group is only looked at. The decibels of the envelope above
/// the threshold, with a quadratic knee, are the output.
class MLevelFollower {
public:
    MLevelFollower() noexcept { Prepare(48000); }

    /// Falls silent and takes `sampleRate`, in hertz, from now on. [setup]
    void Prepare(int sampleRate) noexcept;

    /// Takes in [channelCount][count]; the output at the end, 0..1. A null channel is silence, and
    /// so is a sample that is no finite number. [audio]
    double Advance(const float* const* channels, int channelCount, int count,
                   const MFollowerSettings& settings) noexcept;

    /// Falls silent. [audio]
    void Reset() noexcept;

private:
    static constexpr int kGroup = 16;
    /// What is left of the way to a peak that has stood for so many frames.
    using Remainders = std::array<double, kGroup + 1>;

    static Remainders RemaindersFor(double seconds, int sampleRate) noexcept;
    void Follow(const MFollowerSettings& settings) noexcept;
    double EnvelopeAfter(int frames) const noexcept;
    static double Shape(double envelope, const MFollowerSettings& settings) noexcept;

    int sampleRate_ = 48000;
    double attack_ = -1;  // seconds that the remainders are for
    double release_ = -1;
    Remainders rise_{};
    Remainders fall_{};
    double envelope_ = 0;        // linear amplitude at the start of the group
    std::int32_t peakBits_ = 0;  // of the group so far
    int filled_ = 0;             // frames of the group so far
};
