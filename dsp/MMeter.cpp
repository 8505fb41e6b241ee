// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MMeter.h"

#include "core/MRelaxed.h"
#include "dsp/kernels/MKernelSet.h"

#include <algorithm>
#include <cmath>

namespace {

// Below -300 dB and its square nothing is left to see, and denormal numbers are far.
constexpr double kSmallestPeak = 1e-15;
constexpr double kSmallestSquare = kSmallestPeak * kSmallestPeak;

double Finite(float level) noexcept {
    return std::isfinite(level) ? static_cast<double>(level) : 0.0;
}

}  // namespace

void MMeter::Prepare(int sampleRate) noexcept {
    sampleRate_ = std::max(1, sampleRate);
    count_ = 0;
    for (Channel& channel : channels_) {
        channel.peak = channel.meanSquare = 0;
        MRelaxed::Store(channel.shownPeak, 0.0f);
        MRelaxed::Store(channel.shownRms, 0.0f);
    }
}

void MMeter::SetBlock(int count) noexcept {
    if (count == count_) return;
    count_ = count;
    const double seconds = static_cast<double>(count) / sampleRate_;
    fall_ = std::pow(10.0, -kFallDbPerSecond / 20 * seconds);
    remainder_ = std::exp(-seconds / kAverageSeconds);
}

void MMeter::Feed(const float* const* channels, int channelCount, int count) noexcept {
    std::array<MBlockLevels, kMaxChannels> levels;
    channelCount = std::min(channelCount, kMaxChannels);
    for (int c = 0; c < channelCount; ++c) {
        levels[c] = Kernels().bands->measure(channels[c], count);
    }
    Take(levels.data(), channelCount, count);
}

void MMeter::Take(const MBlockLevels* levels, int channelCount, int count) noexcept {
    if (count <= 0) return;
    SetBlock(count);
    for (int c = 0; c < kMaxChannels; ++c) {
        const MBlockLevels level = c < channelCount ? levels[c] : MBlockLevels{};
        Channel& channel = channels_[c];
        channel.peak = std::max(channel.peak * fall_, Finite(level.peak));
        channel.meanSquare =
            channel.meanSquare * remainder_ + (1 - remainder_) * Finite(level.squares) / count;
        if (channel.peak < kSmallestPeak) channel.peak = 0;
        if (channel.meanSquare < kSmallestSquare) channel.meanSquare = 0;
        MRelaxed::Store(channel.shownPeak, static_cast<float>(channel.peak));
        MRelaxed::Store(channel.shownRms, static_cast<float>(std::sqrt(channel.meanSquare)));
    }
}

float MMeter::Peak(int channel) const noexcept {
    if (channel < 0 || channel >= kMaxChannels) return 0;
    return MRelaxed::Load(channels_[channel].shownPeak);
}

float MMeter::Rms(int channel) const noexcept {
    if (channel < 0 || channel >= kMaxChannels) return 0;
    return MRelaxed::Load(channels_[channel].shownRms);
}
