// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/MTempoSync.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace MTempoSync {

namespace {

constexpr int kLongestExponent =
    6;  // the first length is 2^6 whole notes, each further one half of it

double Factor(Type type) noexcept {
    switch (type) {
        case Type::Triplets:
            return 2.0 / 3.0;
        case Type::Dotted:
            return 3.0 / 2.0;
        case Type::Tuplets:
            return 4.0 / 5.0;
        case Type::Straight:
            break;
    }
    return 1.0;
}

}  // namespace

std::vector<std::string> LengthNames() {
    std::vector<std::string> names;
    for (int exponent = kLongestExponent; exponent > kLongestExponent - kLengthCount; --exponent) {
        const std::string number = std::to_string(1 << std::abs(exponent));
        names.push_back(exponent >= 0 ? number : "1 / " + number);
    }
    return names;
}

std::vector<std::string> TypeNames() { return {"Straight", "Triplets", "Dotted", "Tuplets"}; }

double WholeNotes(int length, Type type) noexcept {
    const int index = std::clamp(length, 0, kLengthCount - 1);
    return std::ldexp(Factor(type), kLongestExponent - index);
}

int PeriodSamples(int length, Type type, double tempo, int sampleRate) noexcept {
    constexpr double kQuartersPerWhole = 4, kSecondsPerMinute = 60;
    if (!(tempo > 0) || sampleRate <= 0) return 0;
    const double seconds = WholeNotes(length, type) * kQuartersPerWhole * kSecondsPerMinute / tempo;
    const double samples = std::floor(seconds * sampleRate + 0.5);
    return samples <= std::numeric_limits<int>::max() ? static_cast<int>(samples) : 0;
}

}  // namespace MTempoSync
