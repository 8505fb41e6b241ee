// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/crossover/MCrossoverPoints.h"

#include "core/MException.h"

#include <algorithm>
#include <cmath>

MCrossoverPoints CheckCrossoverPoints(int bandCount, std::span<const double> frequencies,
                                      double sampleRate) {
    if (bandCount < 1 || bandCount > kMaxCrossoverBands) {
        throw MException("Invalid number of bands.");
    }
    if (!std::isfinite(sampleRate) || sampleRate <= 0) throw MException("Invalid sample rate.");

    const std::size_t count = static_cast<std::size_t>(bandCount - 1);
    if (frequencies.size() < count) throw MException("Invalid crossover frequency.");

    // Below a millionth of the rate the bias on the coefficients outweighs the distance of the
    // poles from the unit circle.
    const double highest = 0.49 * sampleRate;
    const double lowest = std::min(highest, std::max(1.0, 1e-6 * sampleRate));

    MCrossoverPoints points{.bandCount = bandCount, .sampleRate = sampleRate};
    for (std::size_t j = 0; j < count; ++j) {
        if (std::isnan(frequencies[j])) throw MException("Invalid crossover frequency.");
        points.frequency[j] = std::clamp(frequencies[j], lowest, highest);
    }
    std::sort(points.frequency.begin(), points.frequency.begin() + bandCount - 1);
    return points;
}
