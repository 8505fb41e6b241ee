// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/Noise.h"
#include "tests/support/Response.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <span>
#include <vector>

/// What the tests of the crossovers measure with.
namespace CrossoverMeasure {

using Bands = std::vector<std::vector<double>>;

inline std::vector<double> Impulse(int count) {
    std::vector<double> samples(static_cast<std::size_t>(count));
    samples[0] = 1;
    return samples;
}

template <class Sample>
std::vector<double> Sum(const std::vector<std::vector<Sample>>& bands) {
    std::vector<double> sum(bands[0].size());
    for (const auto& band : bands) {
        for (std::size_t i = 0; i < sum.size(); ++i) sum[i] += static_cast<double>(band[i]);
    }
    return sum;
}

inline double Decibels(std::complex<double> response) {
    return 20 * std::log10(std::abs(response));
}

inline double Peak(const Bands& bands) {
    double peak = 0;
    for (const auto& band : bands) {
        for (const double sample : band) peak = std::max(peak, std::abs(sample));
    }
    return peak;
}

inline double LargestDifference(std::span<const double> a, std::span<const double> b) {
    double largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
    return largest;
}

/// Frequencies in even steps of pitch.
inline std::vector<double> Frequencies(double lowest, double highest, int count) {
    std::vector<double> frequencies;
    frequencies.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        frequencies.push_back(lowest * std::pow(highest / lowest, i / (count - 1.0)));
    }
    return frequencies;
}

}  // namespace CrossoverMeasure
