// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MDelayWarp.h"
#include "dsp/MGrowingBuffer.h"

#include <memory>

/// What a change of a delay line's length does to the history when another came shortly before.
enum class MRetime {
    Anew,      ///< stretches what the one before has made of it, interpolating once more
    Movement,  ///< as one movement with those before: however many, it is interpolated once
};

/// A delay of a whole number of samples whose length may change while it runs.
///
/// A change of length resamples the stored history to the new length, so that moving the delay time
/// bends the pitch of the echoes instead of clicking. The samples are interpolated when they are
/// read (MDelayWarp), so that a change within a movement costs next to nothing and many of them do
/// not dull the sound. One instance serves one channel. Nothing but Resize, Reserve and Free
/// touches the heap.
class MDelayLine {
public:
    /// Longest delay in samples: 64 dotted notes at 20 beats per minute, up to 48 kHz. A longer
    /// request is cut to it, so that a wild tempo cannot ask for gigabytes.
    static constexpr int kMaxLength = 1 << 25;

    /// Sets the delay to `length` samples, raised to 1 and cut at kMaxLength, and stretches the
    /// history over it; a new length of 1 keeps the newest sample. Changes more than
    /// MDelayWarp::kMovement samples apart are no movement. `scratch` is working memory that
    /// several lines may share. Allocates only when the length exceeds what was reserved and every
    /// length so far. [audio]
    void Resize(int length, MGrowingBuffer<float>& scratch, MRetime how = MRetime::Anew);

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

    /// The `count` oldest samples, at most Contiguous(), for what comes in to be put in their
    /// place: where they lie, or in `room`, for `count` samples, while the line is moving. [audio]
    float* Open(int count, float* room) noexcept;
    /// Takes back the samples that Open gave. [audio]
    void Close(const float* opened, int count) noexcept;
    /// How many samples may be opened at once; at least 1. [audio]
    int Contiguous() const noexcept;

    /// Whether every stored sample is below `threshold` in magnitude, those that a movement skips
    /// included. [audio]
    bool IsBelow(float threshold) const noexcept;

    int Length() const noexcept { return length_; }      // samples
    int Capacity() const noexcept { return capacity_; }  // samples
    /// The largest length since the line was last cleared, in samples.
    int HighWater() const noexcept { return highWater_; }

private:
    void Grow(int capacity);
    void Refill(int length);
    void Settle(MGrowingBuffer<float>& scratch);
    void WidenRing(int size, MGrowingBuffer<float>& scratch);
    float Newest() noexcept;

    std::unique_ptr<float[]> buffer_;
    int capacity_ = 0;  // a power of two, or 0
    int highWater_ = 0;
    int length_ = 0;
    int position_ = 0;  // the oldest sample, read and overwritten next, while there is no warp
    MDelayWarp warp_;   // active from a change on until what it left has been read
};
