// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MRenderJob.h"

#include "core/MFormat.h"
#include "tools/render/MRenderFailure.h"
#include "tools/render/MRenderPass.h"
#include "tools/render/MSampleWriter.h"
#include "tools/render/MTemporaryFile.h"

#include <chrono>
#include <cmath>
#include <memory>
#include <system_error>
#include <utility>

namespace {

/// Where the gain guard puts the peak of a render that would clip: just below full scale, which
/// leaves room for dither and rounding (-0.1 dBFS).
constexpr double kGuardedPeak = 0.98855;

}  // namespace

MRenderJob::MRenderJob(MRenderSettings settings, MBlockProcessor& processor,
                       std::vector<MRenderLane> lanes)
    : settings_(std::move(settings)), processor_(processor), lanes_(std::move(lanes)) {}

MRenderSummary MRenderJob::Run() {
    const auto start = std::chrono::steady_clock::now();
    MAudioReader reader(settings_.input);
    CheckOutput();
    processor_.Prepare(reader.Shape().channels, reader.Shape().sampleRate);

    // The guard knows its gain only at the end, and a clipped sample cannot be scaled back: a
    // render that it may change is kept in floating point first.
    const MSampleFormat format = settings_.gainGuard ? MSampleFormat::Float32 : settings_.format;
    auto file = std::make_unique<MTemporaryFile>(settings_.output);
    MRenderSummary summary = RenderTo(file->Path(), format, reader);
    if (summary.peak > 1 && settings_.gainGuard) summary.guardGain = kGuardedPeak / summary.peak;
    if (summary.guardGain < 1 || format != settings_.format) {
        auto scaled = std::make_unique<MTemporaryFile>(settings_.output);
        CopyScaled(file->Path(), scaled->Path(), summary);
        file = std::move(scaled);
    }
    file->MoveIntoPlace();

    summary.output = settings_.output.string();
    summary.peak *= summary.guardGain;
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    summary.elapsedSeconds = elapsed.count();
    return summary;
}

void MRenderJob::CheckOutput() const {
    std::error_code ignored;
    if (!settings_.overwrite && std::filesystem::exists(settings_.output, ignored)) {
        FailFile(MFormat("{0} exists; --overwrite replaces it", settings_.output.string()));
    }
}

MRenderSummary MRenderJob::RenderTo(const std::filesystem::path& path, MSampleFormat format,
                                    MAudioReader& reader) const {
    const MTailWatch watch(settings_.tail, reader.Shape().sampleRate);
    std::optional<std::int64_t> maxFrames = reader.Frames();
    if (maxFrames) *maxFrames += watch.MaxFrames();
    MAudioWriter writer(path, reader.Shape(), format, maxFrames);
    MSampleWriter samples(writer, format, WantsDither(format));
    MRenderPass pass(settings_, reader.Shape(), processor_, lanes_, midi_, progress_);
    MRenderSummary summary = pass.Run(reader, samples, writer);
    writer.Close();
    return summary;
}

void MRenderJob::CopyScaled(const std::filesystem::path& from, const std::filesystem::path& to,
                            MRenderSummary& summary) const {
    MAudioReader reader(from);
    MAudioWriter writer(to, reader.Shape(), settings_.format, reader.Frames());
    MSampleWriter samples(writer, settings_.format, WantsDither(settings_.format));
    std::vector<float> block(static_cast<std::size_t>(4096) * reader.Shape().channels);
    const auto gain = static_cast<float>(summary.guardGain);
    while (const int frames = reader.Read(block)) {
        const auto used =
            std::span(block).first(static_cast<std::size_t>(frames) * reader.Shape().channels);
        for (float& sample : used) sample *= gain;
        samples.Write(used);
        if (progress_) progress_(summary.seconds, std::nullopt);
    }
    writer.Close();
    summary.clippedSamples = samples.ClippedSamples();
}

bool MRenderJob::WantsDither(MSampleFormat format) const {
    return settings_.dither && format == MSampleFormat::Pcm16;
}
