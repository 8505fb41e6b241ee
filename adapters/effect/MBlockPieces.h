// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Cuts a block into the pieces that modulated blocks run in: none longer than a limit, and a new
/// one where something happens, unless the piece would get too short to be worth its start.
class MBlockPieces {
public:
    /// The shortest piece, in samples, but for the last one of a block.
    static constexpr int kShortest = 16;

    /// Of a block of `count` samples in pieces of at most `limit`. [audio]
    MBlockPieces(int count, int limit) noexcept : count_(count), limit_(limit) {}

    /// Whether the block has ended. [audio]
    bool IsDone() const noexcept { return start_ >= count_; }
    /// Where the next piece starts, in samples from the start of the block. [audio]
    int Start() const noexcept { return start_; }
    /// Takes the next piece, given where the next thing happens (the block's length or more for
    /// nowhere), and returns its length. What falls into its first samples waits for its end.
    /// [audio]
    int Take(int nextEvent) noexcept;

private:
    int count_;
    int limit_;
    int start_ = 0;
};
