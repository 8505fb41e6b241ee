// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MAudioEffectPluginToAudioPluginAdapter.h"
#include "adapters/effect/MBlockPieces.h"
#include "core/MGuard.h"
#include "dsp/MDenormals.h"

#include <algorithm>
#include <array>
#include <optional>

namespace {

/// Pointers of a block's channels from a place within it on.
template <class Sample>
class PieceChannels {
public:
    PieceChannels(Sample* const* channels, int count, int start) noexcept : pointers_(channels) {
        if (start == 0 || channels == nullptr) return;
        for (int channel = 0; channel < count; ++channel) {
            Sample* const samples = channels[channel];
            own_[channel] = samples != nullptr ? samples + start : nullptr;
        }
        pointers_ = own_.data();
    }
    PieceChannels(const PieceChannels&) = delete;
    PieceChannels& operator=(const PieceChannels&) = delete;

    Sample* const* Pointers() const noexcept { return pointers_; }

private:
    Sample* const* pointers_;
    std::array<Sample*, MBusLayout::kMaxChannels> own_;  // set but where a block starts
};

/// Moves the transport on within a block; it stands at the block's start again afterwards.
class PieceTransport {
public:
    PieceTransport(MTransport& transport, int sampleRate) noexcept
        : transport_(transport), sampleRate_(sampleRate) {}
    ~PieceTransport() {
        if (atStart_) transport_ = *atStart_;
    }
    PieceTransport(const PieceTransport&) = delete;
    PieceTransport& operator=(const PieceTransport&) = delete;

    void MoveTo(int sample) noexcept {
        if (sample == 0) return;
        if (!atStart_) atStart_ = transport_;
        constexpr double kSecondsPerMinute = 60;
        transport_.hasJumped = false;
        transport_.playStateChanged = false;
        if (!atStart_->isPlaying) return;
        transport_.songPosition =
            atStart_->songPosition + sample * atStart_->tempo / (kSecondsPerMinute * sampleRate_);
    }

private:
    MTransport& transport_;
    std::optional<MTransport> atStart_;  // once it has moved
    const int sampleRate_;
};

}  // namespace

void MAudioEffectPluginToAudioPluginAdapter::Process(const float* const* inputs,
                                                     float* const* outputs, int sampleCount) {
    // A failing effect ends its block and no more: what it throws says nothing that a user could
    // act on.
    Guard<MExceptionPolicy::Swallow>("MAudioEffectPluginToAudioPluginAdapter::Process", [&] {
        const MTryLock lock(processingLock_);
        if (!lock || !isReady_) {
            Silence(outputs, sampleCount);
            return;
        }
        const MFlushDenormals flush;
        const int count = std::max(sampleCount, 0);
        midi_.BeginBlock(count);
        if (count <= kLongestBlock) [[likely]] {
            RunFrame(inputs, outputs, 0, count);
        } else {
            RunLongBlock(inputs, outputs, count);
        }
    });
}

// There is no room for such a block: it runs as several, each from a place within it on. MIDI and
// the side chain go on counting from its start.
void MAudioEffectPluginToAudioPluginAdapter::RunLongBlock(const float* const* inputs,
                                                          float* const* outputs, int sampleCount) {
    PieceTransport transport(Transport(), activeRate_);
    for (int first = 0; first < sampleCount;) {
        const int count = std::min(sampleCount - first, kLongestBlock);
        const PieceChannels in(inputs, activeLayout_.inputs, first);
        const PieceChannels out(outputs, activeLayout_.outputs, first);
        transport.MoveTo(first);
        RunFrame(in.Pointers(), out.Pointers(), first, count);
        first += count;
    }
}

void MAudioEffectPluginToAudioPluginAdapter::RunFrame(const float* const* inputs,
                                                      float* const* outputs, int first, int count) {
    const MStateHandOver::Block block(handOver_, count);
    const MPresetTriggers::Block triggerBlock(presetTriggers_);
    modulation_.LookForNewer();
    handOver_.Take([&](const MStateHandOver::Publication& published) { AdoptChanges(published); });
    modulation_.Adopt(handOver_.Taken().modulation);
    channels_.Take(activeLayout_, inputs, outputs, count);
    const float* const* const in = channels_.Inputs();
    float* const* const out = channels_.Outputs();

    PrepareForProcessingOnce(in, count);
    if (HappensInPieces(first, count)) {
        RunPieces(first, count);
    } else {
        midi_.ApplyUntil(std::max(first + count - 1, 0), this);
        modulation_.FollowMultiParameters();
        if (updates_.load(std::memory_order_relaxed)) ProcessUpdate();
        if (count == 0) return;
        BeginBypass(count);
        ProcessBlock(in, out, count);
    }
    if (isBypassHeard_) {
        if (bypassFade_.IsStarting()) StartBypassed();
        for (int channel = 0; channel < activeLayout_.outputs; ++channel) {
            ProcessBypassed(bypassFade_.Signals()[channel], count, channel);
        }
        bypassFade_.Mix(out, count);
    }
    PostProcess(out, count);
}

bool MAudioEffectPluginToAudioPluginAdapter::HappensInPieces(int first, int count) const noexcept {
    if (count == 0) return false;
    return modulation_.IsActive() ||
           (midi_.MovesParameters() && midi_.NextEvent(first) < first + count);
}

void MAudioEffectPluginToAudioPluginAdapter::BeginBypass(int sampleCount) {
    if (handOver_.IsSettling()) {
        bypassFade_.Settle(bypass_.IsOn());
        SettleRamps();
    }
    isBypassHeard_ =
        bypassFade_.Begin(bypass_.IsOn(), ProcessingLatency(), channels_.Inputs(), sampleCount);
}

// Only what depends on parameters goes piece by piece; bypass and meters see the block as a whole.
void MAudioEffectPluginToAudioPluginAdapter::RunPieces(int first, int sampleCount) {
    const int channelCount = activeLayout_.outputs;
    PieceTransport transport(Transport(), activeRate_);
    const bool isModulated = modulation_.IsActive();
    MBlockPieces pieces(sampleCount, isModulated ? activeStandard_.maxLFOBlockSize : sampleCount);
    while (!pieces.IsDone()) {
        const int start = pieces.Start();
        midi_.ApplyUntil(first + start, this);
        const int count = pieces.Take(midi_.NextEvent(first + start + 1) - first);
        if (start == 0 && !pieces.IsDone()) channels_.SeparateInputs(channelCount, sampleCount);
        const PieceChannels in(channels_.Inputs(), channelCount, start);
        const PieceChannels out(channels_.Outputs(), channelCount, start);
        transport.MoveTo(start);
        if (isModulated) {
            Modulate(in.Pointers(), first + start, count);
        } else {
            modulation_.FollowMultiParameters();
        }
        if (updates_.load(std::memory_order_relaxed)) ProcessUpdate();
        if (start == 0) BeginBypass(sampleCount);
        ProcessBlock(in.Pointers(), out.Pointers(), count);
    }
}

void MAudioEffectPluginToAudioPluginAdapter::Modulate(const float* const* inputs, int place,
                                                      int sampleCount) noexcept {
    const PieceChannels sideChain(sideChain_, sideChain_ != nullptr ? sideChainCount_ : 0, place);
    modulation_.Advance({.transport = &Transport(),
                         .count = sampleCount,
                         .sampleRate = activeRate_,
                         .inputs = inputs,
                         .inputCount = activeLayout_.outputs,
                         .sideChain = sideChain_ != nullptr ? sideChain.Pointers() : nullptr,
                         .sideChainCount = sideChainCount_});
}

void MAudioEffectPluginToAudioPluginAdapter::ProcessMIDIEvent(
    int deltaFrames, const std::array<std::uint8_t, 4>& data) {
    midi_.Receive(deltaFrames, data);
}

void MAudioEffectPluginToAudioPluginAdapter::NoteOn(int channel, int note,
                                                    double velocity) noexcept {
    modulation_.NoteOn(channel, note, velocity);
}

void MAudioEffectPluginToAudioPluginAdapter::NoteOff(int channel, int note) noexcept {
    modulation_.NoteOff(channel, note);
}

void MAudioEffectPluginToAudioPluginAdapter::SetSideChain(const float* const* channels,
                                                          int channelCount) noexcept {
    sideChain_ = channels;
    sideChainCount_ = std::clamp(channelCount, 0, MBusLayout::kMaxChannels);
}

void MAudioEffectPluginToAudioPluginAdapter::PrepareForProcessing(const float* const* inputs,
                                                                  int sampleCount) {
    const MTryLock lock(processingLock_);
    if (lock) PrepareForProcessingOnce(inputs, sampleCount);
}

// What moves parameters belongs here, before the effect reads them.
void MAudioEffectPluginToAudioPluginAdapter::PrepareForProcessingOnce(const float* const* inputs,
                                                                      int sampleCount) {
    Guard<MExceptionPolicy::Swallow>(
        "MAudioEffectPluginToAudioPluginAdapter::PrepareForProcessing", [&] {
            presetTriggers_.Run(sampleCount);
            if (inputs != nullptr && IsMetering()) {
                inputMeter_.Feed(inputs, activeLayout_.outputs, sampleCount);
            }
        });
}

void MAudioEffectPluginToAudioPluginAdapter::ProcessUpdate() {
    Guard<MExceptionPolicy::Swallow>("MAudioEffectPluginToAudioPluginAdapter::ProcessUpdate", [&] {
        for (const auto& effect : effects_) effect->Update();
    });
}

void MAudioEffectPluginToAudioPluginAdapter::AdoptChanges(
    const MStateHandOver::Publication& published) noexcept {
    activeStandard_ = published.standard;
}

void MAudioEffectPluginToAudioPluginAdapter::SettleRamps() noexcept {
    for (const auto& effect : effects_) effect->SettleRamps();
}

void MAudioEffectPluginToAudioPluginAdapter::ProcessBlock(const float* const* inputs,
                                                          float* const* outputs, int sampleCount) {
    effects_.front()->Process(&Transport(), inputs, outputs, sampleCount);
}

void MAudioEffectPluginToAudioPluginAdapter::ProcessBypassed(float* /*channelBuffer*/,
                                                             int /*sampleCount*/, int /*channel*/) {
}

void MAudioEffectPluginToAudioPluginAdapter::StartBypassed() {}

void MAudioEffectPluginToAudioPluginAdapter::PostProcess(float* const* outputs, int sampleCount) {
    if (IsMetering()) outputMeter_.Feed(outputs, activeLayout_.outputs, sampleCount);
}

void MAudioEffectPluginToAudioPluginAdapter::Silence(float* const* outputs,
                                                     int sampleCount) const noexcept {
    if (outputs == nullptr || sampleCount <= 0) return;
    for (int channel = 0; channel < OutputChannelCount(); ++channel) {
        if (outputs[channel] != nullptr) std::fill_n(outputs[channel], sampleCount, 0.0f);
    }
}
