// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/delay/MDelayTape.h"
#include "dsp/delay/MRingQueue.h"

#include <cstdint>

/// How the samples of a moving delay line are read: as from a tape whose speed changes.
///
/// A change of length from m to n stretches the history by (n - 1) / (m - 1). Carried out at once
/// it costs a pass over all of the history, and a history stretched again and again loses its
/// treble. So the samples stay as they were written, and only the reading place moves on: by
/// (m - 1) / (n - 1) written samples per sample read where the line was m long when they were
/// written. That gives what a single change asks for, number for number, and after any number of
/// changes a sample is still interpolated once.
class MDelayWarp {
public:
    /// Changes that come within this many samples of each other belong to one movement.
    static constexpr int kMovement = 4096;
    /// A line remembers about this many changes; see IsTooSoon.
    static constexpr int kFinest = 4096;

    explicit MDelayWarp(MDelayMemory& memory) noexcept : tape_(memory) {}

    /// Makes room for the changes of a line of up to `length` samples. [setup]
    void Reserve(int length);

    /// Takes over the content of `circle`, at least 2 samples long. Reserve must have come before.
    /// [audio]
    void Begin(MDelayCircle& circle) noexcept;
    /// Forgets everything and gives the chunks back. [audio]
    void End() noexcept;
    /// Gives the memory of its lists back, without the chunks. [setup]
    void Free() noexcept;
    bool IsActive() const noexcept { return pieces_.Size() > 0; }

    /// Whether samples are still to be read that were written before the last change, and that
    /// change is longer ago than a movement holds together. [audio]
    bool HasRested() const noexcept { return !IsStraight() && sinceChange_ >= kMovement; }
    /// Samples on the tape that are still needed. [audio]
    std::int64_t Stored() const noexcept { return tape_.Written() - Oldest(); }
    /// Times between two changes that are still remembered. [audio]
    int Pieces() const noexcept { return pieces_.Size(); }
    /// Whether so many changes are remembered that the next has to wait for the sound to move on.
    /// [audio]
    bool IsTooSoon() const noexcept;
    /// Stretches everything stored to `length` samples, at least 2. [audio]
    void Change(int length) noexcept;

    /// Reads the `count` oldest samples, at most the length. Write must follow for as many, unless
    /// the warp ends. [audio]
    void Read(float* out, int count) noexcept;
    /// Stores `count` samples in place of the samples just read. [audio]
    void Write(const float* in, int count);

    /// Whether the samples lie on the tape as they will be read, one by one. [audio]
    bool IsStraight() const noexcept { return pieces_.Size() == 1; }
    /// How many samples may be read before a straight line could become a circle. [audio]
    int LeftOfChunk() const noexcept { return tape_.LeftOfChunk(base_); }
    /// Ends where the oldest sample of a straight line begins a chunk, and fills `circle`. Returns
    /// whether it did. [audio]
    bool EndAs(MDelayCircle& circle) noexcept;

    /// The sample written last. [audio]
    float Newest() const noexcept;
    /// Whether every sample that is still needed is below `threshold` in magnitude. [audio]
    bool IsBelow(float threshold) const noexcept { return tape_.IsBelow(threshold, Oldest()); }

private:
    /// A run of samples written between two changes.
    struct Piece {
        int count;   // samples
        int length;  // of the line meanwhile
    };

    double Place(int step) const noexcept {
        return offset_ + static_cast<double>(steps_ + step) * rate_;
    }
    std::int64_t Oldest() const noexcept;
    int StepsBelow(int place, int most) const noexcept;
    void SetRate() noexcept;
    void Anchor() noexcept;
    void EnterPiece() noexcept;
    int Copy(float* out, int most) noexcept;
    int Stretch(float* out, int most) noexcept;

    MDelayTape tape_;
    // The oldest piece is the one being read; of it and the newest the counts are open.
    MRingQueue<Piece> pieces_;  // none while not active

    int length_ = 0;       // of the line, samples
    int sinceChange_ = 0;  // samples
    int ahead_ = 0;        // samples read and not yet written
    // The next sample is read at offset_ + steps_ * rate_ samples after sample base_; the piece
    // ends span_ samples after it. Counted in steps, so that blocks of any size read the same.
    std::int64_t base_ = 0;
    int span_ = 0;
    int steps_ = 0;
    double offset_ = 0;
    double rate_ = 1;
};
