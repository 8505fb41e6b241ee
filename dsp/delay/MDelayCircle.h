// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/delay/MDelayMemory.h"
#include "dsp/delay/MRingQueue.h"

/// The samples that lie in a line of constant length, in chunks: a circle of `length` places of
/// which `position` holds the oldest sample.
struct MDelayCircle {
    MRingQueue<float*> chunks;  ///< those that were reached so far
    int length = 0;             ///< samples; 0 without any
    int position = 0;
    /// Until the position has been round once, the places from it on were never written and stand
    /// for `fill`.
    bool isFilled = false;
    float fill = 0;

    float* At(int place) const noexcept {
        return chunks[place / MDelayMemory::kChunk] + place % MDelayMemory::kChunk;
    }
    /// Whether all samples are below `threshold` in magnitude.
    bool IsBelow(float threshold) const noexcept;
};

/// Whether `count` samples are below `threshold` in magnitude. [any]
bool AreBelow(const float* samples, int count, float threshold) noexcept;
