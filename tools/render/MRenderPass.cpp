// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MRenderPass.h"

#include <algorithm>
#include <cmath>

MRenderPass::MRenderPass(const MRenderSettings& settings, const MAudioShape& shape,
                         MBlockProcessor& processor, std::span<const MRenderLane> lanes,
                         std::span<const MMIDIFileEvent> midi, const MRenderJob::Progress& progress)
    : settings_(settings),
      shape_(shape),
      processor_(processor),
      timeline_(lanes, shape.sampleRate, settings.tempo),
      midi_(midi),
      progress_(progress),
      runner_(processor, shape.channels),
      watch_(settings.tail, shape.sampleRate),
      framesToDrop_(settings.compensatesLatency ? processor.Latency() : 0),
      input_(static_cast<std::size_t>(settings.blockSize) * shape.channels),
      output_(input_.size()) {}

MRenderSummary MRenderPass::Run(MAudioReader& reader, MSampleWriter& samples,
                                MAudioWriter& writer) {
    const int latency = processor_.Latency();
    RunInput(reader, samples);
    const std::int64_t inputFrames = position_;
    if (settings_.compensatesLatency) {
        RunSilence(latency, samples, false);
    } else {
        // What is still on its way through the processor may not be heard for a while, and is no
        // reason to end the tail.
        RunSilence(std::min<std::int64_t>(latency, watch_.MaxFrames()), samples, true);
    }
    const std::int64_t end = position_ + watch_.MaxFrames() - watch_.TailFrames();
    while (!watch_.IsOver(processor_.IsTailSilent())) {
        RunSilence(std::min<std::int64_t>(settings_.blockSize, end - position_), samples, true);
    }
    const std::int64_t keptFrames = inputFrames + watch_.KeptFrames();
    if (keptFrames < writer.Frames()) writer.Truncate(keptFrames);

    MRenderSummary summary;
    summary.channels = shape_.channels;
    summary.sampleRate = shape_.sampleRate;
    summary.seconds = static_cast<double>(keptFrames) / shape_.sampleRate;
    summary.tailSeconds = static_cast<double>(watch_.KeptFrames()) / shape_.sampleRate;
    summary.tailWasCut = watch_.WasCut();
    summary.latencyFrames = latency;
    summary.peak = static_cast<double>(peak_);
    summary.missingSeconds = reader.MissingSeconds();
    summary.lateSettings = timeline_.LatePoints();
    summary.clippedSamples = samples.ClippedSamples();
    return summary;
}

/// Sets what is due now and returns the frames, at most `limit`, of the next block.
int MRenderPass::NextBlock(std::int64_t limit) {
    const auto frames = std::min<std::int64_t>(limit, settings_.blockSize);
    return timeline_.StartBlock(position_, frames, processor_);
}

void MRenderPass::RunBlock(std::span<const float> input, MSampleWriter& samples, bool isTail) {
    MTransport transport;
    transport.isValid = true;
    transport.isPlaying = true;
    transport.tempo = settings_.tempo;
    transport.songPosition = Seconds() * settings_.tempo / 60;
    const double quartersPerBar =
        4.0 * transport.signatureNumerator / transport.signatureDenominator;
    transport.barStart = std::floor(transport.songPosition / quartersPerBar) * quartersPerBar;
    transport.playStateChanged = position_ == 0;

    const auto output = std::span(output_).first(input.size());
    const auto frames = static_cast<std::int64_t>(input.size()) / shape_.channels;
    SendMIDI(frames);
    runner_.Run(transport, input, output);
    position_ += frames;
    const std::int64_t dropped = std::min(framesToDrop_, frames);
    framesToDrop_ -= dropped;
    const auto written = output.subspan(static_cast<std::size_t>(dropped * shape_.channels));
    watch_.Note(NoteLevels(written), static_cast<int>(frames - dropped), isTail);
    samples.Write(written);
}

/// Hands over what is due in the next `frames` frames.
void MRenderPass::SendMIDI(std::int64_t frames) {
    for (; !midi_.empty(); midi_ = midi_.subspan(1)) {
        const double frame = std::round(midi_.front().seconds * shape_.sampleRate);
        if (frame >= static_cast<double>(position_ + frames)) return;
        processor_.SendMIDI(static_cast<int>(frame - static_cast<double>(position_)),
                            midi_.front().data);
    }
}

void MRenderPass::RunInput(MAudioReader& reader, MSampleWriter& samples) {
    for (bool hasMore = true; hasMore;) {
        const int wanted = NextBlock(settings_.blockSize);
        const auto block =
            std::span(input_).first(static_cast<std::size_t>(wanted) * shape_.channels);
        const int frames = reader.Read(block);
        hasMore = frames == wanted;
        if (frames == 0) break;
        RunBlock(block.first(static_cast<std::size_t>(frames) * shape_.channels), samples, false);
        if (progress_) {
            const double total = static_cast<double>(reader.Frames().value_or(position_));
            progress_(Seconds(), std::min(1.0, static_cast<double>(position_) / total));
        }
    }
    std::fill(input_.begin(), input_.end(), 0.0f);
}

void MRenderPass::RunSilence(std::int64_t frames, MSampleWriter& samples, bool isTail) {
    for (const std::int64_t end = position_ + frames; position_ < end;) {
        const auto block = static_cast<std::size_t>(NextBlock(end - position_));
        RunBlock(std::span(input_).first(block * shape_.channels), samples, isTail);
        if (progress_) progress_(Seconds(), std::nullopt);
    }
}

/// Follows the peak and returns the number of frames up to the last audible one.
int MRenderPass::NoteLevels(std::span<const float> output) {
    std::size_t audibleSamples = 0;
    for (std::size_t i = 0; i < output.size(); ++i) {
        const float level = std::abs(output[i]);
        if (level > MTailWatch::kAudiblePeak) audibleSamples = i + 1;
        peak_ = std::max(peak_, level);
    }
    return static_cast<int>(audibleSamples + shape_.channels - 1) / shape_.channels;
}

double MRenderPass::Seconds() const { return static_cast<double>(position_) / shape_.sampleRate; }
