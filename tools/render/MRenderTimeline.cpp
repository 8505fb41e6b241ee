// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MRenderTimeline.h"

#include <algorithm>
#include <cmath>

namespace {

double FramesPerUnit(MTimeUnit unit, int sampleRate, double tempo) {
    switch (unit) {
        case MTimeUnit::Samples:
            return 1;
        case MTimeUnit::Beats:
            return 60.0 * sampleRate / tempo;
        case MTimeUnit::Seconds:
            break;
    }
    return sampleRate;
}

void Apply(const MRenderPoint& point, MBlockProcessor& processor) {
    for (const MRenderWrite& write : point.writes) {
        processor.SetParameter(write.parameter, write.value);
    }
}

}  // namespace

MRenderTimeline::MRenderTimeline(std::span<const MRenderLane> lanes, int sampleRate, double tempo) {
    for (const MRenderLane& lane : lanes) {
        AddLane(lane, FramesPerUnit(lane.unit, sampleRate, tempo));
    }
    std::stable_sort(changes_.begin(), changes_.end(), [](const Change& left, const Change& right) {
        return left.frame < right.frame;
    });
    std::stable_sort(lines_.begin(), lines_.end(),
                     [](const Line& left, const Line& right) { return left.start < right.start; });
}

void MRenderTimeline::AddLane(const MRenderLane& lane, double framesPerUnit) {
    constexpr double kNever = 1e15;  // frames; far beyond any file, and safe to compute with
    for (const MRenderPoint& point : lane.points) {
        const auto frame = std::llround(std::min(point.time * framesPerUnit, kNever));
        if (lane.isLinear && &point != &lane.points.front()) {
            const std::int64_t start = changes_.back().frame;
            if (frame > start) lines_.push_back({start, frame, changes_.back().point, &point});
        }
        changes_.push_back({frame, &point});
    }
}

int MRenderTimeline::StartBlock(std::int64_t position, std::int64_t frames,
                                MBlockProcessor& processor) {
    for (; nextChange_ < changes_.size(); ++nextChange_) {
        const Change& change = changes_[nextChange_];
        if (change.frame > position) {
            frames = std::min(frames, change.frame - position);
            break;
        }
        Apply(*change.point, processor);
    }
    UpdateActiveLines(position);
    // All lines share one grid, so that several at once do not chop the block up further.
    if (!activeLines_.empty()) frames = std::min(frames, kPieceFrames - position % kPieceFrames);
    for (const Line& line : activeLines_) {
        const double share = static_cast<double>(position + frames - line.start) /
                             static_cast<double>(line.end - line.start);
        for (std::size_t i = 0; i < line.to->writes.size(); ++i) {
            const MRenderWrite& to = line.to->writes[i];
            processor.SetParameter(to.parameter,
                                   std::lerp(line.from->writes[i].value, to.value, share));
        }
    }
    return static_cast<int>(frames);
}

void MRenderTimeline::UpdateActiveLines(std::int64_t position) {
    std::erase_if(activeLines_, [&](const Line& line) { return line.end <= position; });
    for (; nextLine_ < lines_.size() && lines_[nextLine_].start <= position; ++nextLine_) {
        activeLines_.push_back(lines_[nextLine_]);
    }
}
