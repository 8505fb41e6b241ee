// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/MAudioPlugin.h"
#include "tests/support/Noise.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

/// Runs `plugin` over all of `input` in blocks of `block` samples.
inline void RunPlugin(MAudioPlugin& plugin, Channels& input, Channels& output, int block) {
    for (int start = 0; start < input.Length(); start += block) {
        const int count = std::min(block, input.Length() - start);
        plugin.Process(input.From(start), output.From(start), count);
    }
}

/// The largest difference between `left` and `right`, which comes `delay` samples later, from
/// sample `from` of `right` on, in decibels of full scale; -400 for none, infinite where one is
/// not finite.
inline double DifferenceDb(const Channels& left, const Channels& right, int from, int delay = 0) {
    double largest = 1e-20;
    for (int c = 0; c < left.Count(); ++c) {
        for (int i = std::max(from, delay); i < left.Length(); ++i) {
            const float one = left[c][i - delay], other = right[c][i];
            const double difference =
                std::fabs(static_cast<double>(one) - static_cast<double>(other));
            largest = std::max(largest, std::isfinite(difference) ? difference : HUGE_VAL);
        }
    }
    return 20 * std::log10(largest);
}

/// The identifier of the parameter with the key `id`; the count of parameters when there is none.
inline std::uint32_t FindParameter(MAudioPlugin& plugin, const std::string& id) {
    std::uint32_t found = 0;
    const auto count = static_cast<std::uint32_t>(plugin.ParameterCount());
    while (found < count && plugin.GetParameterID(found) != id) ++found;
    return found;
}
