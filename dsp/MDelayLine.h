// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MGrowingBuffer.h"

#include <memory>

/// A delay of a whole number of samples whose length may change while it runs.
///
/// A change of length resamples the stored history to the new length, so that moving the delay time
/// bends the pitch of the echoes instead of clicking. One instance serves one channel. Nothing but
/// Resize, Reserve and Free touches the heap.
class MDelayLine {
public:
    /// Longest delay in samples: 64 dotted notes at 20 beats per minute, up to 48 kHz. A longer
    /// request is cut to it, so that a wild tempo cannot ask for gigabytes.
    static constexpr int kMaxLength = 1 << 25;

    /// Sets the delay to `length` samples, raised to 1 and cut at kMaxLength, and stretches the
    /// history over it; a new length of 1 keeps the newest sample. `scratch` is working memory that
    /// several lines may share. Allocates only when the length exceeds what was reserved and every
    /// length so far. [audio]
    void Resize(int length, MGrowingBuffer<float>& scratch);

    /// Makes room for `length` samples without a change to the delay. [setup]
    void Reserve(int length);

    /// Silences the line; its length and memory stay. [audio]
    void Clear() noexcept;

    /// Gives the memory back; the length becomes 0. [audio]
    void Free() noexcept;

    /// Returns the sample written Length() samples ago and stores `sample` in its place. The length
    /// must not be 0. [audio]
    float Exchange(float sample) noexcept;

    /// The same for `count` samples, as if one by one; `in` and `out` must not overlap. [audio]
    void Exchange(const float* in, float* out, int count) noexcept;

    /// The oldest samples, the ones read and overwritten next: Contiguous() of them in a row.
    /// [audio]
    float* Oldest() noexcept { return buffer_.get() + position_; }
    /// How many samples may be exchanged in place before the line wraps. [audio]
    int Contiguous() const noexcept { return length_ - position_; }
    /// Tells that `count` samples, at most Contiguous(), were exchanged in place. [audio]
    void Advance(int count) noexcept {
        position_ += count;
        if (position_ == length_) position_ = 0;
    }

    /// Whether every stored sample is below `threshold` in magnitude. [audio]
    bool IsBelow(float threshold) const noexcept;

    int Length() const noexcept { return length_; }      // samples
    int Capacity() const noexcept { return capacity_; }  // samples
    /// The largest length since the line was last cleared, in samples.
    int HighWater() const noexcept { return highWater_; }

private:
    void Grow(int length);
    void StretchFrom(const float* history, int oldLength);

    std::unique_ptr<float[]> buffer_;  // valid and initialised up to highWater_
    int capacity_ = 0;                 // a power of two, or 0
    int highWater_ = 0;
    int length_ = 0;
    int position_ = 0;  // the oldest sample, read and overwritten next
};
