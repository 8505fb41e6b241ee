// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/MBlockRunner.h"
#include "tools/render/MRenderJob.h"
#include "tools/render/MRenderTimeline.h"
#include "tools/render/MSampleWriter.h"

#include <cstdint>
#include <span>
#include <vector>

/// The block loop of one render: the whole input, then the tail, from a reader to a writer.
///
/// The processor's latency is taken out of the output: as many frames go unwritten at the start,
/// and as many frames of silence go in after the input before the tail begins.
class MRenderPass {
public:
    /// Everything handed in must outlive this; the processor is prepared for `shape`. [main]
    MRenderPass(const MRenderSettings& settings, const MAudioShape& shape,
                MBlockProcessor& processor, std::span<const MRenderLane> lanes,
                std::span<const MMIDIFileEvent> midi, const MRenderJob::Progress& progress);

    /// Runs the loop and returns lengths and peak; `writer` stands behind `samples`. Throws
    /// MRenderFailure and what the progress throws. [main]
    MRenderSummary Run(MAudioReader& reader, MSampleWriter& samples, MAudioWriter& writer);

private:
    int NextBlock(std::int64_t limit);
    void RunBlock(std::span<const float> input, MSampleWriter& samples, bool isTail);
    void RunInput(MAudioReader& reader, MSampleWriter& samples);
    void RunSilence(std::int64_t frames, MSampleWriter& samples, bool isTail);
    void SendMIDI(std::int64_t frames);
    int NoteLevels(std::span<const float> output);
    double Seconds() const;

    const MRenderSettings& settings_;
    const MAudioShape shape_;
    MBlockProcessor& processor_;
    MRenderTimeline timeline_;
    std::span<const MMIDIFileEvent> midi_;  // still to be played
    const MRenderJob::Progress& progress_;
    MBlockRunner runner_;
    MTailWatch watch_;
    std::int64_t framesToDrop_;  // of the output, before anything is written
    std::int64_t position_ = 0;  // frames processed so far
    float peak_ = 0;
    std::vector<float> input_;  // interleaved
    std::vector<float> output_;
};
