// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

/// How the samples of a moving delay line are read: as from a tape whose speed changes.
///
/// A change of length from m to n stretches the history by (n - 1) / (m - 1). Carried out at once
/// it costs a pass over all of the history, and a history stretched again and again loses its
/// treble. So the samples stay as they were written, in a ring, and only the reading place moves
/// on: by (m - 1) / (n - 1) written samples per sample read where the line was m long when they
/// were written. That gives what a single change asks for, number for number, and after any number
/// of changes a sample is still interpolated once.
///
/// The ring belongs to the line and never holds more than the longest length since it began.
class MDelayWarp {
public:
    /// Changes that come within this many samples of each other belong to one movement.
    static constexpr int kMovement = 4096;

    /// Makes room for the changes of a line of up to `capacity` samples: one in 32 samples.
    /// [setup]
    void Reserve(int capacity);

    /// Takes over a history of `length` samples, at least 2, which lies at the start of a ring of
    /// `ringSize`, a power of two. Reserve must have come before. [audio]
    void Begin(int length, int ringSize) noexcept;
    void End() noexcept { count_ = 0; }
    bool IsActive() const noexcept { return count_ > 0; }

    /// Whether a change now may be added to those before. If not, the history has come to rest and
    /// is to be settled first, or there is no room for another change. [audio]
    bool MayFollow() const noexcept;
    /// Stretches everything stored to `length` samples, from 2 to the size of the ring. [audio]
    void Change(int length) noexcept;

    /// Reads the `count` oldest samples, at most the length. Write must follow for as many, unless
    /// the warp ends. [audio]
    void Read(const float* ring, float* out, int count) noexcept;
    /// Stores `count` samples, those that take the place of the ones just read. [audio]
    void Write(float* ring, const float* in, int count) noexcept;

    /// Whether the samples lie in the ring as they will be read, one by one. [audio]
    bool IsStraight() const noexcept { return count_ == 1; }

    /// Moves the reading place to the first sample still needed, for the calls below. [audio]
    void Anchor() noexcept;
    /// The first stored sample still needed, in the ring, and the number of samples from there on.
    int First() const noexcept { return InRing(Oldest()); }
    int Stored() const noexcept;
    int RingSize() const noexcept { return ringSize_; }
    /// Tells that the stored samples now lie at the start of a ring of `ringSize`. [audio]
    void MoveTo(int ringSize) noexcept;

private:
    /// What was written between two changes.
    struct Piece {
        int count;   // samples
        int length;  // of the line meanwhile
    };

    Piece& At(int index) const noexcept { return pieces_[(head_ + index) & (room_ - 1)]; }
    Piece& Newest() const noexcept { return At(count_ - 1); }
    double Place(int step) const noexcept {
        return offset_ + static_cast<double>(steps_ + step) * rate_;
    }
    int InRing(std::int64_t sample) const noexcept {
        return static_cast<int>(sample & (ringSize_ - 1));
    }
    std::int64_t Oldest() const noexcept;
    int StepsBelow(int place, int most) const noexcept;
    void SetRate() noexcept;
    void EnterPiece() noexcept;
    int Copy(const float* ring, float* out, int most) noexcept;
    int Stretch(const float* ring, float* out, int most) noexcept;

    // The oldest piece is the one being read; of it and the newest the counts are open.
    std::unique_ptr<Piece[]> pieces_;
    int room_ = 0;   // pieces, a power of two
    int head_ = 0;   // the oldest
    int count_ = 0;  // 0 while not active

    int ringSize_ = 1;          // samples
    int length_ = 0;            // of the line, samples
    int sinceChange_ = 0;       // samples
    int ahead_ = 0;             // samples read and not yet written
    std::int64_t written_ = 0;  // samples so far
    // The next sample is read at offset_ + steps_ * rate_ samples after sample base_; the piece
    // ends span_ samples after it. Counted in steps, so that blocks of any size read the same.
    std::int64_t base_ = 0;
    int span_ = 0;
    int steps_ = 0;
    double offset_ = 0;
    double rate_ = 1;
};
