// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MAmplitude.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace {

constexpr int kBits = 5;
constexpr int kParts = 1 << kBits;                      // of an octave of amplitude
constexpr double kPartsPerDecibel = 5.315084951819779;  // log2(10) / 20 * kParts
constexpr double kLogOfPart = 0.02166084939249829;      // ln(2) / kParts

/// The amplitudes of the parts of an octave.
const std::array<double, kParts> kAmplitudes = [] {
    std::array<double, kParts> amplitudes{};
    for (int i = 0; i < kParts; ++i) amplitudes[i] = std::exp2(static_cast<double>(i) / kParts);
    return amplitudes;
}();

}  // namespace

double MAmplitudeOf(double decibels) noexcept {
    const double place = decibels * kPartsPerDecibel;
    // Adding it leaves no room for decimals: the sum's last bits are the nearest whole number.
    constexpr double kRounder = 6755399441055744.0;  // 1.5 * 2^52
    const double rounded = place + kRounder;
    const auto whole = std::bit_cast<std::int64_t>(rounded) - std::bit_cast<std::int64_t>(kRounder);
    const double x = (place - (rounded - kRounder)) * kLogOfPart;
    // e^x for |x| < 0.011; the next term would be 2e-15 at most.
    const double square = x * x;
    const double above = (1.0 / 6 + x * (1.0 / 24)) + square * (1.0 / 120 + x * (1.0 / 720));
    const double part = kAmplitudes[whole & (kParts - 1)];
    const double amplitude = part + part * (x + square * (0.5 + x * above));
    return std::bit_cast<double>(std::bit_cast<std::int64_t>(amplitude) + ((whole >> kBits) << 52));
}
