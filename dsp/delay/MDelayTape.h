// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/delay/MDelayCircle.h"
#include "dsp/delay/MDelayMemory.h"
#include "dsp/delay/MRingQueue.h"

#include <cstdint>

/// The samples of a moving line in the order in which they came, as they were written.
///
/// It begins with what the line held when it began to move, left where it lies: sample 0 is the
/// oldest of these, and what comes later continues their count. Chunks go back as soon as
/// everything in them has been read.
class MDelayTape {
public:
    /// Samples that lie next to each other; or equal ones, for which no memory stands.
    struct Run {
        const float* samples;  ///< null where all are `fill`
        std::int64_t count;
        float fill;
    };

    explicit MDelayTape(MDelayMemory& memory) noexcept : memory_(memory) {}

    /// Makes room for the chunk lists of a line of `length` samples. [setup]
    void Reserve(int length);
    /// Gives the memory of the chunk lists back, without the chunks. [setup]
    void Free() noexcept;
    /// Begins with the content of `circle`, which is empty afterwards. [audio]
    void Begin(MDelayCircle& circle) noexcept;
    /// Forgets everything and gives all chunks back. [audio]
    void End() noexcept;
    /// Makes a full circle of the last `length` samples, which begin a chunk, and forgets the
    /// others. [audio]
    void EndAs(MDelayCircle& circle, int length) noexcept;

    /// Appends `count` samples. Allocates only when the memory's reserve is used up. [audio]
    void Append(const float* in, int count);
    /// Says that samples before `sample` will not be read again. [audio]
    void DropBefore(std::int64_t sample) noexcept;

    /// The samples from `sample` on. [audio]
    Run At(std::int64_t sample) const noexcept;
    /// Whether all samples from `sample` on are below `threshold` in magnitude. [audio]
    bool IsBelow(float threshold, std::int64_t sample) const noexcept;
    /// Samples written so far, the first ones included. [audio]
    std::int64_t Written() const noexcept { return written_; }
    /// How many samples lie from `sample` on to where the next chunk of appended ones begins.
    /// [audio]
    int LeftOfChunk(std::int64_t sample) const noexcept;
    /// Whether `sample` is the first of a chunk of appended ones. [audio]
    bool BeginsChunk(std::int64_t sample) const noexcept {
        return sample >= start_.length && LeftOfChunk(sample) == kChunk;
    }

private:
    static constexpr int kChunk = MDelayMemory::kChunk;

    Run AtStart(int sample) const noexcept;
    int LastOfStart() const noexcept;
    void DropStartBefore(std::int64_t sample) noexcept;

    MDelayMemory& memory_;
    MDelayCircle start_;         // what the line held
    int startDropped_ = 0;       // of its chunks
    MRingQueue<float*> chunks_;  // of what was appended
    std::int64_t chunksDropped_ = 0;
    std::int64_t written_ = 0;
};
