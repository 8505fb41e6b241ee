// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MBlockPieces.h"

#include <algorithm>

int MBlockPieces::Take(int nextEvent) noexcept {
    const int longest = std::min(std::max(limit_, kShortest), count_ - start_);
    const int wanted = std::max(nextEvent - start_, kShortest);
    const int length = std::min(longest, wanted);
    start_ += length;
    return length;
}
