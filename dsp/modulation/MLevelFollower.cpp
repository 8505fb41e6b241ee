// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/modulation/MLevelFollower.h"

#include "dsp/modulation/MUnitRange.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <numbers>

namespace {

// Below -300 dB there is nothing to follow, and denormal numbers are far.
constexpr double kSilence = 1e-15;

constexpr std::int32_t kMagnitude = 0x7FFFFFFF;
constexpr std::int32_t kInfinity = 0x7F800000;

// The patterns of positive floats are ordered as whole numbers are; largest values of these are
// found four at a time, whatever NaN there may be among them.
using Four = std::int32_t __attribute__((vector_size(16)));

Four Larger(Four a, Four b) noexcept { return a > b ? a : b; }

/// The largest magnitude among `count` samples that are finite, as bits.
std::int32_t FinitePeakBits(const float* samples, int count) noexcept {
    std::int32_t bits = 0;
    for (int i = 0; i < count; ++i) {
        const std::int32_t magnitude = std::bit_cast<std::int32_t>(samples[i]) & kMagnitude;
        if (magnitude < kInfinity) bits = std::max(bits, magnitude);
    }
    return bits;
}

/// The same of sixteen samples.
std::int32_t GroupPeakBits(const float* samples) noexcept {
    std::array<Four, 4> part{};
    std::memcpy(part.data(), samples, sizeof part);
    for (Four& four : part) four &= kMagnitude;
    const Four most = Larger(Larger(part[0], part[1]), Larger(part[2], part[3]));
    const std::int32_t bits = std::max(std::max(most[0], most[1]), std::max(most[2], most[3]));
    return bits < kInfinity ? bits : FinitePeakBits(samples, 16);
}

/// The decibels of a normal, positive amplitude, exact to 1e-6; the library's logarithm costs as
/// much as the rest of a short block.
double Decibels(double amplitude) noexcept {
    constexpr std::uint64_t kRootHalf = 0x3FE6A09E667F3BCDU;  // the pattern of sqrt(1/2)
    const auto bits = std::bit_cast<std::uint64_t>(amplitude);
    const auto exponent = static_cast<std::int64_t>(bits - kRootHalf) >> 52;
    // sqrt(1/2) up to sqrt(2): the series in t needs few terms.
    const auto mantissa =
        std::bit_cast<double>(bits - (static_cast<std::uint64_t>(exponent) << 52));
    const double t = (mantissa - 1) / (mantissa + 1);
    const double square = t * t;
    const double series = t * (1 + square * (1.0 / 3 + square * (1.0 / 5 + square / 7)));
    constexpr double kPerOctave = 6.020599913279624;
    constexpr double kPerSeries = 40 / std::numbers::ln10;
    return static_cast<double>(exponent) * kPerOctave + series * kPerSeries;
}

}  // namespace

void MLevelFollower::Prepare(int sampleRate) noexcept {
    sampleRate_ = std::max(1, sampleRate);
    attack_ = release_ = -1;
    Reset();
}

void MLevelFollower::Reset() noexcept {
    envelope_ = 0;
    peakBits_ = 0;
    filled_ = 0;
}

double MLevelFollower::Advance(const float* const* channels, int channelCount, int count,
                               const MFollowerSettings& settings) noexcept {
    Follow(settings);
    for (int done = 0; done < count;) {
        const int frames = std::min(kGroup - filled_, count - done);
        for (int c = 0; c < channelCount; ++c) {
            if (channels[c] == nullptr) continue;
            const float* samples = channels[c] + done;
            peakBits_ = std::max(peakBits_, frames == kGroup ? GroupPeakBits(samples)
                                                             : FinitePeakBits(samples, frames));
        }
        done += frames;
        filled_ += frames;
        if (filled_ < kGroup) break;
        envelope_ = EnvelopeAfter(kGroup);
        peakBits_ = 0;
        filled_ = 0;
    }
    return Shape(EnvelopeAfter(filled_), settings);
}

/// Takes over other times.
void MLevelFollower::Follow(const MFollowerSettings& settings) noexcept {
    const double attack = settings.attack > 0 ? settings.attack : 0;  // no number: a jump
    const double release = settings.release > 0 ? settings.release : 0;
    if (attack != attack_) rise_ = RemaindersFor(attack, sampleRate_);
    if (release != release_) fall_ = RemaindersFor(release, sampleRate_);
    attack_ = attack;
    release_ = release;
}

MLevelFollower::Remainders MLevelFollower::RemaindersFor(double seconds, int sampleRate) noexcept {
    const double perFrame = seconds > 0 ? std::exp(-1 / (seconds * sampleRate)) : 0;
    Remainders remainders{1};
    for (int i = 1; i <= kGroup; ++i) remainders[i] = remainders[i - 1] * perFrame;
    return remainders;
}

/// Where the group's peak so far has led in so many frames.
double MLevelFollower::EnvelopeAfter(int frames) const noexcept {
    const auto peak = static_cast<double>(std::bit_cast<float>(peakBits_));
    const double remainder = peak > envelope_ ? rise_[frames] : fall_[frames];
    const double envelope = peak + (envelope_ - peak) * remainder;
    return envelope > kSilence ? envelope : 0;
}

double MLevelFollower::Shape(double envelope, const MFollowerSettings& settings) noexcept {
    if (envelope <= 0) return 0;
    const double above = Decibels(envelope) - settings.threshold;
    const double knee = settings.knee > 0 ? settings.knee : 0;
    const double range = settings.range > 0 ? settings.range : 0;
    double bent = above > 0 ? above : 0;
    if (std::abs(above) < knee / 2) {
        bent = (above + knee / 2) * (above + knee / 2) / (2 * knee);
    }
    if (range == 0) return bent > 0 ? 1 : 0;
    return ToUnitRange(bent / range);
}
