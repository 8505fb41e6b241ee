// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MBypassFade.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace {
constexpr double kFadeSeconds = 0.01;
}

void MBypassFade::Prepare(int channels, int sampleRate, int maximumDelay, int blockSize,
                          bool isOn) {
    channels_ = channels;
    fadeLength_ = std::max(1, static_cast<int>(std::lround(sampleRate * kFadeSeconds)));
    Settle(isOn);
    wasHeard_ = wasFed_ = isStarting_ = false;
    writePosition_ = 0;
    const std::size_t capacity = std::bit_ceil(static_cast<std::size_t>(maximumDelay) + 1);
    for (int channel = 0; channel < channels; ++channel) {
        history_[channel].assign(capacity, 0.0f);
        buffers_[channel].Get(blockSize);
    }
}

void MBypassFade::Settle(bool isOn) noexcept {
    isOn_ = isOn;
    position_ = isOn ? fadeLength_ : 0;
}

bool MBypassFade::Begin(bool isOn, int delay, const float* const* inputs, int count) {
    const bool isHeard = isOn || position_ > 0;
    const bool isFed = isHeard || delay > 0;
    isStarting_ = !std::exchange(wasHeard_, isHeard) && isHeard;
    // Without a delay nothing is kept. A delay that comes later must not find what was kept before.
    if (!std::exchange(wasFed_, isFed) && isFed) ForgetHistory();
    isOn_ = isOn;
    const int last = static_cast<int>(history_[0].size()) - 1;
    for (int channel = 0; channel < channels_; ++channel) {
        if (isHeard) {
            signals_[channel] = buffers_[channel].Get(count);
            Exchange(channel, inputs[channel], signals_[channel], std::min(delay, last), count);
        } else if (isFed) {
            Feed(channel, inputs[channel], count);
        }
    }
    writePosition_ = static_cast<int>((static_cast<unsigned>(writePosition_) + count) & last);
    return isHeard;
}

void MBypassFade::ForgetHistory() noexcept {
    for (int channel = 0; channel < channels_; ++channel) {
        std::fill(history_[channel].begin(), history_[channel].end(), 0.0f);
    }
}

void MBypassFade::Feed(int channel, const float* input, int count) noexcept {
    std::vector<float>& ring = history_[channel];
    const int capacity = static_cast<int>(ring.size());
    const int kept = std::min(count, capacity);
    const int start = (writePosition_ + count - kept) & (capacity - 1);
    const int first = std::min(kept, capacity - start);
    const float* const newest = input + (count - kept);
    std::copy_n(newest, first, ring.data() + start);
    std::copy_n(newest + first, kept - first, ring.data());
}

void MBypassFade::Exchange(int channel, const float* input, float* output, int delay,
                           int count) noexcept {
    float* const ring = history_[channel].data();
    const unsigned mask = static_cast<unsigned>(history_[channel].size()) - 1;
    unsigned position = static_cast<unsigned>(writePosition_);
    for (int i = 0; i < count; ++i, ++position) {
        ring[position & mask] = input[i];
        const float delayed = ring[(position - static_cast<unsigned>(delay)) & mask];
        output[i] = std::isfinite(delayed) ? delayed : 0.0f;
    }
}

void MBypassFade::Mix(float* const* outputs, int count) noexcept {
    const int end = isOn_ ? fadeLength_ : 0;
    const int step = isOn_ ? 1 : -1;
    const int fading = std::min(count, std::abs(end - position_));
    const float scale = 1.0f / static_cast<float>(fadeLength_);
    for (int channel = 0; channel < channels_; ++channel) {
        float* const output = outputs[channel];
        const float* const signal = signals_[channel];
        for (int i = 0; i < fading; ++i) {
            const float part = static_cast<float>(position_ + i * step) * scale;
            output[i] += part * (signal[i] - output[i]);
        }
        if (isOn_) std::copy(signal + fading, signal + count, output + fading);
    }
    position_ += fading * step;
}
