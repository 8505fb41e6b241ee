// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/delay/MDelayCircle.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

bool MDelayCircle::IsBelow(float threshold) const noexcept {
    if (!isFilled && position < length && std::abs(fill) >= threshold) return false;
    const int written = isFilled ? length : position;
    for (int place = 0; place < written; place += MDelayMemory::kChunk) {
        const int count = std::min(MDelayMemory::kChunk, written - place);
        if (!AreBelow(At(place), count, threshold)) return false;
    }
    return true;
}

bool AreBelow(const float* samples, int count, float threshold) noexcept {
    constexpr int kScan = 1024;
    for (int start = 0; start < count; start += kScan) {
        const int end = std::min(start + kScan, count);
        // Magnitudes of floats order as the integers behind them, and integers vectorise.
        std::int32_t loudest = 0;
        for (int i = start; i < end; ++i) {
            loudest = std::max(loudest, std::bit_cast<std::int32_t>(samples[i]) & 0x7fffffff);
        }
        if (std::bit_cast<float>(loudest) >= threshold) return false;
    }
    return true;
}
