// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/MReferenceDelay.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double kCeiling = 1e9;

float Store(double sample) { return static_cast<float>(std::clamp(sample, -kCeiling, kCeiling)); }

double Squared(const MBlockRamp& ramp, int i, int count) {
    const MLinearRamp line = ramp.Squared(count);
    return line.start + i * line.step;
}

double Straight(const MBlockRamp& ramp, int i, int count) {
    const MLinearRamp line = ramp.Linear(count);
    return line.start + i * line.step;
}

}  // namespace

double MReferenceDelay::Saturate(double sample, double amount) {
    const double x = sample;
    const double size = std::abs(x);
    const double bent =
        size < 1 ? std::tanh(std::numbers::pi * size) / std::tanh(std::numbers::pi) : 1;
    const double r = x < 0 ? -bent : bent;
    return (1 - amount) * x + amount * (r + 0.7 * (r - x) * (r - x));
}

void MReferenceDelay::Line::Resize(int length) {
    const std::size_t to = static_cast<std::size_t>(std::max(length, 1)), from = samples.size();
    if (to == from) return;
    std::rotate(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(position),
                samples.end());
    position = 0;
    std::vector<float> stretched(to, 0.0f);
    const double ratio = (static_cast<double>(from) - 1) / (static_cast<double>(to) - 1);
    for (std::size_t i = 0; i < to && from > 0; ++i) {
        if (to == 1 || from == 1) {
            stretched[i] = samples.back();
            continue;
        }
        const double place = static_cast<double>(i) * ratio;
        const std::size_t j = std::min(static_cast<std::size_t>(place), from - 2);
        const double f = place - static_cast<double>(j);
        stretched[i] = static_cast<float>((1 - f) * static_cast<double>(samples[j]) +
                                          f * static_cast<double>(samples[j + 1]));
    }
    samples = stretched;
}

void MReferenceDelay::Line::Push(float sample) {
    samples[position] = sample;
    position = position + 1 == samples.size() ? 0 : position + 1;
}

float MReferenceDelay::Line::Exchange(float sample) {
    const float oldest = Read();
    Push(sample);
    return oldest;
}

void MReferenceDelay::Prepare(int channels, int sampleRate) {
    channels_ = channels;
    sampleRate_ = sampleRate;
    taps_ = {};
    isFrozen_ = false;
}

void MReferenceDelay::Update(const MDelaySettings& settings) {
    const bool hadLow = hasLow_, hadHigh = hasHigh_, filteredFeedback = filtersFeedback_;
    hasLow_ = std::abs(settings.maxFrequency - 20000) >= 1;
    hasHigh_ = std::abs(20 - settings.minFrequency) >= 1;
    filtersFeedback_ = settings.filtersFeedback;
    const bool isElsewhere = filteredFeedback != filtersFeedback_;
    for (Tap& tap : taps_) {
        for (Channel& channel : tap) {
            if (!hadLow || isElsewhere) channel.low = channel.inputLow = {};
            if (!hadHigh || isElsewhere) channel.high = channel.inputHigh = {};
        }
    }
    const auto q = static_cast<double>(static_cast<float>(0.1 + 0.8 * settings.resonance));
    const auto design = [&](BiquadType type, double frequency) {
        return DesignBiquad(type, std::min(frequency, 0.49 * sampleRate_), q, sampleRate_);
    };
    if (hasLow_) low_ = design(BiquadType::LowPass, settings.maxFrequency);
    if (hasHigh_) high_ = design(BiquadType::HighPass, settings.minFrequency);
    for (int tap = 0; tap < kDelayTaps; ++tap) {
        const MDelayTapSettings& s = settings.taps[tap];
        isEnabled_[tap] = s.isEnabled;
        if (!s.isEnabled) {
            for (Channel& channel : taps_[tap]) {
                channel.line = channel.predelay = {};
                channel.low = channel.high = {};
            }
            continue;
        }
        if (!s.isSynchronised) SetLengths(taps_[tap], s, 0);
        const auto round = [&](double seconds) {
            return static_cast<int>(std::floor(seconds * sampleRate_ + 0.5));
        };
        const int left = round(s.leftOffset), right = round(s.rightOffset);
        taps_[tap][0].predelay.Resize(left + std::max(-right, 0));
        taps_[tap][1].predelay.Resize(right + std::max(-left, 0));
    }
}

void MReferenceDelay::SetLengths(Tap& tap, const MDelayTapSettings& settings, double tempo) {
    int length = static_cast<int>(sampleRate_ * settings.delay);
    if (settings.isSynchronised) {
        const double held = tempo > 0 ? std::clamp(tempo, 20.0, 999.0) : tempo;
        const int half =
            MTempoSync::PeriodSamples(settings.syncLength, settings.syncType, held, sampleRate_) /
            2;
        if (half > 0) length = half;
    }
    for (int channel = 0; channel < channels_; ++channel) tap[channel].line.Resize(length);
}

void MReferenceDelay::BeginFreeze(bool isOn) {
    const auto step = static_cast<float>(1.0 / (sampleRate_ * 0.01));
    if (isOn && !isFrozen_) {
        isFrozen_ = true;
        position_ = 0;
        step_ = step;
    } else if (!isOn && isFrozen_) {
        if (position_ - 1e-20f > 0) {
            step_ = -step;
        } else {
            isFrozen_ = false;
        }
    }
}

void MReferenceDelay::Process(const MDelaySettings& settings, double tempo,
                              const float* const* inputs, float* const* outputs, int count) {
    std::vector<std::vector<float>> filtered;
    std::vector<const float*> sources;
    for (int c = 0; c < channels_; ++c) {
        std::fill_n(outputs[c], count, 0.0f);
        filtered.emplace_back(inputs[c], inputs[c] + count);
        for (float& sample : filtered.back()) sample = std::isfinite(sample) ? sample : 0.0f;
        if (settings.filtersFeedback) continue;
        for (float& sample : filtered.back()) {
            double x = static_cast<double>(sample);
            if (hasLow_) x = RunBiquad(low_, taps_[0][c].inputLow, x);
            if (hasHigh_) x = RunBiquad(high_, taps_[0][c].inputHigh, x);
            sample = static_cast<float>(x);
        }
    }
    bool isFirst = true;
    for (int tap = 0; tap < kDelayTaps; ++tap) {
        if (!isEnabled_[tap]) continue;
        if (settings.taps[tap].isSynchronised) SetLengths(taps_[tap], settings.taps[tap], tempo);
        const bool isSecondInRow = settings.isSerial && !isFirst;
        sources.clear();
        std::vector<std::vector<float>> echoes;  // of the tap before
        for (int c = 0; c < channels_; ++c) {
            echoes.emplace_back(outputs[c], outputs[c] + count);
        }
        for (int c = 0; c < channels_; ++c) {
            sources.push_back(isSecondInRow ? echoes[c].data() : filtered[c].data());
        }
        BeginFreeze(settings.taps[tap].isFrozen);
        ProcessTap({settings, settings.taps[tap], count}, taps_[tap], sources.data(), outputs);
        isFirst = false;
    }
}

void MReferenceDelay::ProcessTap(const Block& block, Tap& tap, const float* const* inputs,
                                 float* const* outputs) {
    std::vector<float> echoes[kDelayMaxChannels];
    const bool isPingPong = block.tap.mode == MDelayMode::PingPong && channels_ == 2;
    if (isPingPong) {
        ProcessPingPong(block, tap, inputs, echoes);
    } else {
        for (int c = 0; c < channels_; ++c) ProcessChannel(block, tap[c], inputs[c], echoes[c]);
    }
    for (int i = 0; i < block.count; ++i) {
        const double gain = Squared(block.tap.gain, i, block.count);
        const double p = Straight(block.tap.panorama, i, block.count);
        for (int c = 0; c < channels_; ++c) {
            const auto own = static_cast<double>(echoes[c][i]);
            double sum = own;
            if (channels_ != 2) {
                sum = own * gain;
            } else if (!isPingPong) {
                const auto other = static_cast<double>(echoes[1 - c][i]);
                const double away = c == 0 ? p : -p;  // how far the pan leads away from this side
                sum = away >= 0 ? 2 * gain * (1 - away) * own
                                : 2 * gain * own + 2 * gain * -away * other;
            }
            outputs[c][i] = static_cast<float>(static_cast<double>(outputs[c][i]) + sum);
        }
    }
}

void MReferenceDelay::ProcessPingPong(const Block& block, Tap& tap, const float* const* inputs,
                                      std::vector<float>* echoes) {
    for (int i = 0; i < block.count; ++i) {
        const double gain = Squared(block.tap.gain, i, block.count);
        const double p = Straight(block.tap.panorama, i, block.count);
        const double feedback = Squared(block.tap.feedback, i, block.count);
        const auto l = static_cast<double>(tap[0].predelay.Exchange(inputs[0][i]));
        const auto r = static_cast<double>(tap[1].predelay.Exchange(inputs[1][i]));
        const double left = p >= 0 ? 2 * gain * (1 - p) * l : 2 * gain * l + 2 * gain * -p * r;
        const double right = p >= 0 ? 2 * gain * r + 2 * gain * p * l : 2 * gain * (1 + p) * r;
        const float fromLeft = tap[0].line.Read(), fromRight = tap[1].line.Read();
        echoes[0].push_back(fromLeft);
        echoes[1].push_back(fromRight);
        Finish(block, tap[0], left + feedback * static_cast<double>(fromRight), fromLeft);
        Finish(block, tap[1], right + feedback * static_cast<double>(fromLeft), fromRight);
    }
}

void MReferenceDelay::ProcessChannel(const Block& block, Channel& channel, const float* input,
                                     std::vector<float>& echoes) {
    for (int i = 0; i < block.count; ++i) {
        const double feedback = Squared(block.tap.feedback, i, block.count);
        const float in = channels_ == 2 ? channel.predelay.Exchange(input[i]) : input[i];
        const auto x = static_cast<double>(in);
        const float echo = channel.line.Read();
        const auto d = static_cast<double>(echo);
        const bool isDefault = block.tap.mode == MDelayMode::Default;
        echoes.push_back(echo);
        Finish(block, channel, isDefault ? (x + d) * feedback : x + feedback * d, echo);
    }
}

void MReferenceDelay::Finish(const Block& block, Channel& channel, double loop, float echo) {
    if (block.all.filtersFeedback) {
        if (hasHigh_) loop = std::clamp(RunBiquad(high_, channel.high, loop), -10.0, 10.0);
        if (hasLow_) loop = std::clamp(RunBiquad(low_, channel.low, loop), -10.0, 10.0);
    }
    if (block.all.saturation > 1e-8) {
        loop = std::clamp(Saturate(loop, block.all.saturation), -10.0, 10.0);
    }
    if (isFrozen_) {
        const auto p = static_cast<double>(position_);
        loop = (1 - p) * loop + p * static_cast<double>(echo);
        position_ = std::clamp(position_ + step_, 0.0f, 1.0f);
    }
    channel.line.Push(Store(loop));
}
