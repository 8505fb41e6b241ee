// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <vector>

/// Samples that leave in the order in which they came.
class MSampleQueue {
public:
    /// Appends `samples`. Allocates only when more wait than ever before. [audio]
    void Append(std::span<const float> samples);

    /// Appends `count` samples of silence; allocates as Append. [audio]
    void AppendSilence(int count);

    /// Takes the oldest samples out, as many as `samples` holds. Throws MException "Not enough data
    /// in the queue." when fewer wait, and takes none. [audio]
    void Take(std::span<float> samples);

    /// Samples that wait. [audio]
    int Count() const noexcept { return count_; }

    /// Forgets all samples and keeps the memory. [audio]
    void Clear() noexcept;

private:
    void Reserve(int count);

    std::vector<float> ring_;  // size: a power of two, never shrinks
    int first_ = 0;            // the oldest sample
    int count_ = 0;
};
