// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/MAudioFile.h"
#include "tools/render/MBlockProcessor.h"
#include "tools/render/MMIDIFile.h"
#include "tools/render/MRenderLane.h"
#include "tools/render/MRenderSummary.h"
#include "tools/render/MTailWatch.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// What a render reads and writes; nothing about what processes.
struct MRenderSettings {
    std::filesystem::path input;
    std::filesystem::path output;
    MSampleFormat format = MSampleFormat::Float32;
    bool dither = true;  ///< on the way to 16 bit
    int blockSize = 512;
    double tempo = 120;  ///< beats per minute
    bool compensatesLatency = true;
    MTail tail;
    bool gainGuard = false;
    bool overwrite = false;
};

/// Sends one file through a processor into another file: input, tail, gain guard, and nothing but a
/// complete output at the end. It streams, so memory does not depend on the length of the file.
class MRenderJob {
public:
    /// Receives the seconds done and, while the input lasts, the share of it (0..1). Throws
    /// MRenderCancelled to stop the render.
    using Progress = std::function<void(double seconds, std::optional<double> share)>;

    /// The processor must outlive this; its parameters are set already. [main]
    MRenderJob(MRenderSettings settings, MBlockProcessor& processor,
               std::vector<MRenderLane> lanes = {});

    /// Calls `progress` once a block. [main]
    void SetProgress(Progress progress) { progress_ = std::move(progress); }

    /// Plays these messages, in the order of their times, from the start of the input. [main]
    void SetMIDI(std::vector<MMIDIFileEvent> events) { midi_ = std::move(events); }

    /// Renders. Throws MRenderFailure; then the output is as it was before, or absent. [main]
    MRenderSummary Run();

private:
    void CheckOutput() const;
    MRenderSummary RenderTo(const std::filesystem::path& path, MSampleFormat format,
                            MAudioReader& reader) const;
    void CopyScaled(const std::filesystem::path& from, const std::filesystem::path& to,
                    MRenderSummary& summary) const;
    bool WantsDither(MSampleFormat format) const;

    MRenderSettings settings_;
    MBlockProcessor& processor_;
    std::vector<MRenderLane> lanes_;
    std::vector<MMIDIFileEvent> midi_;
    Progress progress_;
};
