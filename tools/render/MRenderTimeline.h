// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/MBlockProcessor.h"
#include "tools/render/MRenderLane.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Brings lanes to a processor block by block: cuts blocks where a point is due, and into short
/// pieces while a line is under way. One thread only.
class MRenderTimeline {
public:
    /// Longest block while a line is under way, in frames.
    static constexpr int kPieceFrames = 64;

    /// The lanes must outlive this; `tempo` in quarter notes per minute. [main]
    MRenderTimeline(std::span<const MRenderLane> lanes, int sampleRate, double tempo);

    /// Sets what is due for the block that starts at frame `position` and returns its length, at
    /// most `frames`. A line's value is that of the block's end, where the processor's own ramps
    /// arrive. Positions must not go back. [main]
    int StartBlock(std::int64_t position, std::int64_t frames, MBlockProcessor& processor);

    /// Points that no block has reached yet. [main]
    int LatePoints() const { return static_cast<int>(changes_.size() - nextChange_); }

private:
    struct Change {
        std::int64_t frame;
        const MRenderPoint* point;
    };
    struct Line {
        std::int64_t start;
        std::int64_t end;
        const MRenderPoint* from;
        const MRenderPoint* to;
    };

    void AddLane(const MRenderLane& lane, double framesPerUnit);
    void UpdateActiveLines(std::int64_t position);

    std::vector<Change> changes_;  // by frame
    std::size_t nextChange_ = 0;
    std::vector<Line> lines_;  // by start
    std::size_t nextLine_ = 0;
    std::vector<Line> activeLines_;
};
