// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/kernels/MBandKernels.h"

#include <array>

/// Levels of up to eight channels for a display: one thread feeds blocks, any number of others read
/// without a lock. Every number is consistent in itself; numbers read one after the other may be of
/// neighbouring blocks.
///
/// The peak rises at once and falls by 20 dB a second; the RMS is an average that has come 63 % of
/// the way after 300 ms. Both move from block to block.
class MMeter {
public:
    static constexpr int kMaxChannels = 8;
    static constexpr double kFallDbPerSecond = 20;
    static constexpr double kAverageSeconds = 0.3;

    MMeter() noexcept { Prepare(48000); }

    /// Falls silent and takes `sampleRate`, in hertz, from now on. [setup]
    void Prepare(int sampleRate) noexcept;

    /// Takes in one block, [channelCount][count]; channels from `channelCount` on get silence.
    /// [audio]
    void Feed(const float* const* channels, int channelCount, int count) noexcept;

    /// Takes in a block of `count` frames that was measured already. What is not finite counts as
    /// silence. [audio]
    void Take(const MBlockLevels* levels, int channelCount, int count) noexcept;

    /// Takes in `count` frames of silence. [audio]
    void FeedSilence(int count) noexcept { Take(nullptr, 0, count); }

    /// Linear amplitude, 0 and up; 0 for a channel that is not there. [any]
    float Peak(int channel) const noexcept;
    float Rms(int channel) const noexcept;

private:
    /// What one channel has come to.
    struct Channel {
        double peak = 0;
        double meanSquare = 0;
        float shownPeak = 0;  // read by other threads
        float shownRms = 0;   // read by other threads
    };

    void SetBlock(int count) noexcept;

    std::array<Channel, kMaxChannels> channels_;
    int sampleRate_ = 0;    // hertz
    int count_ = 0;         // frames that the two factors are for
    double fall_ = 1;       // of a peak over the block
    double remainder_ = 1;  // of the average over the block
};
