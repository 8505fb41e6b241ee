// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/delay/MDelayMemory.h"

#include <cstddef>
#include <utility>

void MDelayMemory::Reserve(int chunks) {
    if (chunks <= chunks_) return;
    const int added = chunks - chunks_;
    // First all that may fail for want of memory.
    returned_.Reserve(chunks);
    arenas_.reserve(arenas_.size() + 1);
    arenas_.push_back(
        std::make_unique_for_overwrite<float[]>(static_cast<std::size_t>(added) * kChunk));
    for (; untouchedChunks_ > 0; --untouchedChunks_) {
        Return(untouched_);
        untouched_ += kChunk;
    }
    untouched_ = arenas_.back().get();
    untouchedChunks_ = added;
    chunks_ = chunks;
}

float* MDelayMemory::Take() {
    if (returned_.Size() > 0) return returned_.Pop();
    if (untouchedChunks_ == 0) Reserve(2 * chunks_ + 1);
    --untouchedChunks_;
    return std::exchange(untouched_, untouched_ + kChunk);
}

void MDelayMemory::Free() noexcept { *this = {}; }
