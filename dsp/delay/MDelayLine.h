// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MGrowingBuffer.h"
#include "dsp/delay/MDelayMemory.h"
#include "dsp/delay/MDelayWarp.h"

/// A delay of a whole number of samples whose length may change while it runs.
///
/// A change of length resamples the stored history to the new length, so that moving the delay time
/// bends the pitch of the echoes instead of clicking. The samples are interpolated when they are
/// read (MDelayWarp), so that a change costs next to nothing at any length, and many of them do not
/// dull the sound. One instance serves one channel. Nothing but Resize, Reserve and Free touches
/// the heap.
class MDelayLine {
public:
    /// Longest delay in samples: 64 dotted notes at 20 beats per minute, up to 48 kHz. A longer
    /// request is cut to it, so that a wild tempo cannot ask for gigabytes.
    static constexpr int kMaxLength = 1 << 25;
    /// As long as it holds no more than this, a line that changes again after a rest, before its
    /// last change has been read, interpolates once more. A line that holds more would hold up the
    /// audio thread with that; there the change counts as a part of the movement before.
    static constexpr int kLongestSettled = 1 << 13;  // samples

    MDelayLine() = default;
    MDelayLine(const MDelayLine&) = delete;
    MDelayLine& operator=(const MDelayLine&) = delete;
    ~MDelayLine() = default;

    /// Sets the delay to `length` samples, raised to 1 and cut at kMaxLength, and stretches the
    /// history over it; a new length of 1 keeps the newest sample. Changes up to
    /// MDelayWarp::kMovement samples apart are one movement: however many, a sample is interpolated
    /// once. A line of thousands of samples that has more changes than it can remember keeps its
    /// length; the caller asks again with the next block. `scratch` is working memory for up to
    /// kLongestSettled samples that several lines may share. Allocates only when the length exceeds
    /// all that was reserved, and then touches none of the memory. [audio]
    void Resize(int length, MGrowingBuffer<float>& scratch);

    /// Makes room for `length` samples without a change to the delay. [setup]
    void Reserve(int length);

    /// Forgets all sound; the length is 0 until it is set, and the memory stays. [audio]
    void Clear() noexcept;

    /// The same, and gives the memory back. [setup]
    void Free() noexcept;

    /// Returns the sample written Length() samples ago and stores `sample` in its place. The length
    /// must not be 0. [audio]
    float Exchange(float sample);

    /// The same for `count` samples, as if one by one; `in` and `out` must not overlap. [audio]
    void Exchange(const float* in, float* out, int count);

    /// The `count` oldest samples, at most Contiguous(), for what comes in to be put in their
    /// place: where they lie, or in `room`, for `count` samples, while the line is moving. [audio]
    float* Open(int count, float* room) noexcept;
    /// Takes back the samples that Open gave. [audio]
    void Close(const float* opened, int count);
    /// How many samples may be opened at once; at least 1. [audio]
    int Contiguous() const noexcept;

    /// Whether every stored sample is below `threshold` in magnitude. Samples that a movement will
    /// skip count as well. [audio]
    bool IsBelow(float threshold) const noexcept;

    int Length() const noexcept { return length_; }  // samples

private:
    bool IsSettledSoon() const noexcept;
    void Settle(MGrowingBuffer<float>& scratch);
    void Refill(int length, float sample);
    void EnterRun();
    float Newest() const noexcept;

    MDelayMemory memory_;
    int length_ = 0;
    MDelayWarp warp_{memory_};  // active from a change on until what it left has been read
    // While there is no warp, samples are read and overwritten where they lie: at run_, as far as
    // one lies behind the other.
    MDelayCircle circle_;
    float* run_ = nullptr;
    int runLeft_ = 0;  // samples
};
