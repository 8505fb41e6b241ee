// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/MBlockProcessor.h"

#include <span>
#include <vector>

/// One block's way through a processor: interleaved in, planar through the processor, interleaved
/// out.
class MBlockRunner {
public:
    /// The processor must outlive this. [main]
    MBlockRunner(MBlockProcessor& processor, int channels);

    int Channels() const { return channels_; }

    /// Runs the frames of interleaved `input` and leaves the result in `output`, which may be the
    /// same memory. Throws MRenderFailure (Processing) when the result is not finite. [main]
    void Run(const MTransport& transport, std::span<const float> input, std::span<float> output);

private:
    void Separate(std::span<const float> input, int frames);
    void Interleave(std::span<float> output, int frames) const;

    MBlockProcessor& processor_;
    int channels_;
    std::vector<std::vector<float>> inputs_;  // [channels][frames]
    std::vector<std::vector<float>> outputs_;
};
