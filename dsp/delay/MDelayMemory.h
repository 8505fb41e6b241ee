// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/delay/MRingQueue.h"

#include <memory>
#include <vector>

/// The memory of one delay line, handed out in chunks.
///
/// A line that grows takes further chunks and leaves its samples where they are, however many they
/// are. A chunk that was never handed out has not been touched either: room for a minute of sound
/// costs no physical page before the sound is there.
class MDelayMemory {
public:
    static constexpr int kChunk = 2048;  ///< samples

    /// The number of chunks that a line of `length` samples needs while it is moving as well: the
    /// first and the last chunk of what it held before and of what it holds now are used in part.
    static constexpr int ChunksFor(int length) noexcept {
        return (length + kChunk - 1) / kChunk + 4;
    }

    /// Makes room for `chunks` in all, without touching it. Takes microseconds. [setup]
    void Reserve(int chunks);

    /// A chunk of undefined content; those given back come first, in the order in which they came
    /// back. Allocates only when none is left. [audio]
    float* Take();
    /// Takes back a chunk from Take. [audio]
    void Return(float* chunk) noexcept { returned_.Push(chunk); }

    /// Gives everything back; no chunk may be in use any more. [setup]
    void Free() noexcept;

    int Chunks() const noexcept { return chunks_; }  // in use or not

private:
    std::vector<std::unique_ptr<float[]>> arenas_;
    MRingQueue<float*> returned_;
    float* untouched_ = nullptr;  // the next chunk of the newest arena
    int untouchedChunks_ = 0;
    int chunks_ = 0;
};
