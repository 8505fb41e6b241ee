// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MGrowingBuffer.h"
#include "plugin/MBusLayout.h"

#include <array>
#include <vector>

/// The way around an effect: the input, as late as the effect's output, and a fade of 10 ms from
/// one to the other. The effect runs on behind it, so that the way back is just as smooth.
class MBypassFade {
public:
    /// Starts from silence for 1 to 8 `channels` at `sampleRate` hertz, in the position `isOn`
    /// without a fade, with room for delays up to `maximumDelay` and blocks up to `blockSize`
    /// samples. [setup]
    void Prepare(int channels, int sampleRate, int maximumDelay, int blockSize, bool isOn);

    /// Goes to the position `isOn` without a fade. [audio]
    void Settle(bool isOn) noexcept;

    /// Begins a block: takes in the inputs, [channels][count], which the effect may then overwrite.
    /// `delay` in samples, up to the maximum. Whether anything of the way around is heard in this
    /// block; only then Signals and Mix serve. Allocates when `count` exceeds every block so far.
    /// [audio]
    bool Begin(bool isOn, int delay, const float* const* inputs, int count);
    /// Whether this block is the first after a pause in which Signals did not serve. [audio]
    bool IsStarting() const noexcept { return isStarting_; }
    /// The delayed inputs of the block, [channels][count], for whoever has to shape them. [audio]
    float* const* Signals() const noexcept { return signals_.data(); }
    /// Fades the outputs, which hold the effect's, [channels][count]. [audio]
    void Mix(float* const* outputs, int count) noexcept;

private:
    void ForgetHistory() noexcept;
    void Feed(int channel, const float* input, int count) noexcept;
    void Exchange(int channel, const float* input, float* output, int delay, int count) noexcept;

    int channels_ = 0;
    int fadeLength_ = 1;  // samples
    int position_ = 0;    // 0: the effect alone; fadeLength_: the input alone
    bool isOn_ = false;
    bool wasHeard_ = false;  // in the last block
    bool wasFed_ = false;    // the history, in the last block
    bool isStarting_ = false;
    std::array<std::vector<float>, MBusLayout::kMaxChannels> history_;  // rings; a power of two
    int writePosition_ = 0;
    std::array<MGrowingBuffer<float>, MBusLayout::kMaxChannels> buffers_;
    std::array<float*, MBusLayout::kMaxChannels> signals_{};
};
